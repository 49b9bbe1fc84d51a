// Runs the whole application: the macOS front end on this system's real services, with a scan in worker processes.

#include "app/ShellEntry.h"
#include "tests/app/RestoredSignals.h"
#include "tests/apple/AppKitFixture.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>

extern "C" int ombrelShellEntry(vantry::ShellLaunch launch);

namespace vantry::apple {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class AppKitApplication : public AppKitFixture {
protected:
    void SetUp() override {
        AppKitFixture::SetUp();
        std::filesystem::create_directories(home / "Downloads");
        writeFile(home / "Downloads/Painter.dmg", std::string(6'000'000, 'x'));
        std::filesystem::last_write_time(home / "Downloads/Painter.dmg",
                                         std::filesystem::file_time_type::clock::now() - std::chrono::days(100));
        setAfterEachTurn(layOutWindows); // as a display does
    }
    void TearDown() override {
        setAfterEachTurn(nullptr);
        AppKitFixture::TearDown();
    }

    /// Runs the application; `block` acts as the user.
    static int run(std::vector<std::string> arguments, const std::function<void()>& block,
                   std::unique_ptr<SingleInstance> instance = nullptr) {
        Desktop::get().whileRunning = [&block] {
            EXPECT_TRUE(runUntil([] { return textOf(statusButton().toolTip).find(" used, ") != std::string::npos; }));
            block();
            EXPECT_TRUE(HasFatalFailure() || runUntil([] { return Desktop::get().hasEnded; }));
            [[NSApplication sharedApplication] terminate:nil]; // in case of a failure
        };
        const int status = ombrelShellEntry({.arguments = std::move(arguments), .instance = std::move(instance)});
        Desktop::get().whileRunning = nullptr;
        return status;
    }
    /// Lets the window draw first, as before a real click.
    static void click(NSView* view, NSEventType button = NSEventTypeLeftMouseUp) {
        layOutWindows();
        apple::click(view, button);
    }
    static NSWindow* cleanup() { return windowTitled("Ombrel · Free Up Space"); }
    static bool shows(NSWindow* window, const std::string& title) {
        return viewTitled(window.contentView, title) != nil;
    }
    static void quitByMenu() {
        click(statusButton(), NSEventTypeRightMouseUp);
        EXPECT_TRUE(choose(takeMenu(), "Quit Ombrel"));
    }

    TemporaryFolder home;
    ScopedEnvironment homeVariable{"HOME", home.path().c_str()};
    ScopedEnvironment config{"XDG_CONFIG_HOME", nullptr};
    ScopedEnvironment data{"XDG_DATA_HOME", nullptr};
    RestoredSignals signals;
};

} // namespace

TEST_F(AppKitApplication, ScansInWorkerProcessesAndLeavesNothingBehind) {
    const int status = run({}, [&] {
        click(statusButton());
        click(viewTitled(keyWindow().contentView, "Free Up Space…"));
        ASSERT_TRUE(cleanup());
        ASSERT_TRUE(runUntil([] { return shows(cleanup(), "Painter.dmg"); }));
        click(viewTitled(cleanup().contentView, "Select Low-Risk Files"));
        click(viewTitled(cleanup().contentView, "Move to Trash…"));
        ASSERT_TRUE(runUntil([] { return keyWindow() != cleanup(); })) << "the sheet";
        press(escapeKey);
        runPosted();
        choose(first<NSSegmentedControl>(cleanup().contentView), 1);
        EXPECT_TRUE(runUntil([] { return !shows(cleanup(), "Painter.dmg"); }));
        quitByMenu();
    });
    EXPECT_EQ(status, EXIT_SUCCESS);
    EXPECT_TRUE(std::filesystem::exists(home / "Downloads/Painter.dmg"));
}

TEST_F(AppKitApplication, MovesWhatWasConfirmedToTheTrash) {
    run({"--show-cleanup"}, [&] {
        ASSERT_TRUE(runUntil([] { return cleanup() && shows(cleanup(), "Painter.dmg"); }));
        click(viewTitled(cleanup().contentView, "Select Low-Risk Files"));
        click(viewTitled(cleanup().contentView, "Move to Trash…"));
        ASSERT_TRUE(runUntil([] { return keyWindow() != cleanup(); }));
        press(returnKey);
        EXPECT_TRUE(runUntil(
            [] { return shows(cleanup(), "Moved 1 item to the Trash · a privacy-safe local record was saved"); }));
        quitByMenu();
    });
    EXPECT_FALSE(std::filesystem::exists(home / "Downloads/Painter.dmg"));
    EXPECT_TRUE(std::filesystem::exists(home / ".local/share/Trash/files/Painter.dmg"));
}

TEST_F(AppKitApplication, ReadsAgainEveryMinuteAndAfterSleep) {
    run({}, [&] {
        click(statusButton());
        const auto reads = [](const std::function<void()>& cause) {
            NSView* const button = statusButton();
            button.toolTip = @"not read";
            cause();
            return runUntil([button] { return ![button.toolTip isEqual:@"not read"]; });
        };
        EXPECT_TRUE(reads([] { advance(std::chrono::seconds(60)); }));
        EXPECT_TRUE(reads(wakeFromSleep));
        click(viewTitled(keyWindow().contentView, "Quit"));
    });
}

TEST_F(AppKitApplication, OpeningItOnceMoreShowsThePopoverUnlessTheSessionDoesSo) {
    run({}, [&] {
        NSApplication* const application = [NSApplication sharedApplication];
        const auto openOnceMore = [&] {
            EXPECT_FALSE([application.delegate applicationShouldHandleReopen:application hasVisibleWindows:NO]);
            runPosted();
            return keyWindow() != statusButton().window;
        };
        advance(std::chrono::milliseconds(9'999));
        EXPECT_FALSE(openOnceMore());
        advance(std::chrono::milliseconds(1));
        EXPECT_TRUE(openOnceMore());
        EXPECT_TRUE([application.delegate applicationSupportsSecureRestorableState:application]);
        quitByMenu();
    });
}

TEST_F(AppKitApplication, OpensSettingsAndFoldersAndRevealsFiles) {
    run({"--show-cleanup"}, [&] {
        ASSERT_TRUE(runUntil([] { return cleanup() && shows(cleanup(), "Painter.dmg"); }));
        for (NSView* view : viewsBelow(cleanup().contentView))
            if ([view.accessibilityLabel isEqual:@"Reveal Painter.dmg in Finder"])
                click(view);
        choose(first<NSSegmentedControl>(cleanup().contentView), 1);
        ASSERT_TRUE(runUntil([] { return shows(cleanup(), "Open Home Folder"); }));
        click(viewTitled(cleanup().contentView, "Open Home Folder"));
        [cleanup() close];
        click(statusButton());
        click(viewTitled(keyWindow().contentView, "Storage Settings…"));
        quitByMenu();
    });
    const Desktop& log = Desktop::get();
    EXPECT_THAT(log.opened, ElementsAre(std::filesystem::canonical(home.path()).native(),
                                        "x-apple.systempreferences:com.apple.settings.Storage"));
    EXPECT_THAT(log.revealed, ElementsAre(std::filesystem::canonical(home.path()).native() + "/Downloads/Painter.dmg"));
}

TEST_F(AppKitApplication, EndsOnASignalWhileASheetAsks) {
    run({"--show-cleanup"}, [&] {
        ASSERT_TRUE(runUntil([] { return cleanup() && shows(cleanup(), "Painter.dmg"); }));
        click(viewTitled(cleanup().contentView, "Select Low-Risk Files"));
        click(viewTitled(cleanup().contentView, "Move to Trash…"));
        ASSERT_TRUE(runUntil([] { return keyWindow() != cleanup(); }));
        raise(SIGTERM);
    });
    EXPECT_TRUE(std::filesystem::exists(home / "Downloads/Painter.dmg"));
}

TEST_F(AppKitApplication, GivesUpTheInstanceWhenItBeginsToEnd) {
    const auto claim = [this] { return SingleInstance::claim(home.path(), "test").value_or(nullptr); };
    run(
        {},
        [&] {
            NSApplication* const application = [NSApplication sharedApplication];
            EXPECT_FALSE(claim());
            EXPECT_EQ([application.delegate applicationShouldTerminate:application], NSTerminateNow);
            // A process that is being started holds a copy of the lock until it has become another program.
            EXPECT_TRUE(runUntil([&] { return claim() != nullptr; }));
            quitByMenu();
        },
        claim());
}

TEST_F(AppKitApplication, SaysSoWhereThereIsNoWindowServer) {
    Desktop::get().hasWindowServer = false;
    testing::internal::CaptureStderr();
    EXPECT_EQ(ombrelShellEntry({}), noDisplayStatus);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("no display"));
}

} // namespace vantry::apple
