#include "shell/appkit/AppKitShell.h"

#include "tests/apple/AppKitFixture.h"
#include "tests/support/Candidates.h"
#include "tests/support/FakeServices.h"

#include <gmock/gmock.h>

namespace vantry::apple {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// The front end with the real application, in a world that changes only on request.
class AppKitShellTest : public AppKitFixture {
protected:
    /// Launches, runs `block`, and destroys everything.
    void run(const std::function<void()>& block) {
        @autoreleasepool {
            AppKitShell shell;
            delegate = std::make_shared<AppDelegate>(shell, world.appServices());
            shell.setDelegate(delegate);
            delegate->applicationDidFinishLaunching();
            settleAll();
            world.log->clear();
            block();
            settleAll();
            delegate->applicationWillTerminate();
            delegate.reset();
        }
    }
    void settleAll() {
        for (int round = 0; round < 3; ++round) { // blocks of one queue may post to the other
            world.settle();
            settle();
        }
    }
    void pressStatusItem(NSEventType button = NSEventTypeLeftMouseUp) {
        click(statusButton(), button);
        settleAll();
    }
    void press(NSView* root, const std::string& title) {
        click(viewTitled(root, title));
        settleAll();
    }
    static NSWindow* popover() {
        NSWindow* const window = keyWindow();
        return window.contentView != statusButton() && window.title.length == 0 ? window : nil;
    }
    static NSView* cleanup() { return windowTitled("Ombrel · Free Up Space").contentView; }

    FakeServices world;
    std::shared_ptr<AppDelegate> delegate;
};

} // namespace

TEST_F(AppKitShellTest, IsAnAccessoryWithTheBarInTheMenuBar) {
    run([&] {
        EXPECT_EQ([[NSApplication sharedApplication] activationPolicy], NSApplicationActivationPolicyAccessory);
        EXPECT_EQ(NSWidth(statusButton().bounds), 60);
        EXPECT_EQ(textOf(statusButton().toolTip), "Data: 300 GB used, 200 GB available");
        EXPECT_EQ(textOf(statusButton().accessibilityLabel), "Data: 300 GB used, 200 GB available");
        EXPECT_FALSE(popover());
    });
}

TEST_F(AppKitShellTest, ALeftClickClosesThePopoverWhetherThePressOrTheReleaseDoes) {
    for (const bool pressCloses : {true, false})
        run([&] {
            Desktop::get().popoversCloseForStatusItems = pressCloses;
            pressStatusItem();
            EXPECT_TRUE(popover());
            pressStatusItem();
            EXPECT_FALSE(popover());
            pressStatusItem();
            EXPECT_TRUE(popover());
        });
}

TEST_F(AppKitShellTest, ALeftClickOpensAndClosesThePopover) {
    run([&] {
        pressStatusItem();
        ASSERT_TRUE(popover());
        EXPECT_TRUE([NSApplication sharedApplication].active);
        EXPECT_TRUE(viewTitled(popover().contentView, "300 GB of 500 GB used"));
        world.volume = std::unexpected(StorageReadFailure{StorageReadError::missingCapacity});
        press(popover().contentView, "Refresh");
        EXPECT_TRUE(viewTitled(popover().contentView, "The total disk capacity is unavailable."));
        pressStatusItem();
        EXPECT_FALSE(popover());
    });
}

TEST_F(AppKitShellTest, ChoicesInThePopoverReachTheBarAndTheStore) {
    run([&] {
        pressStatusItem();
        NSView* const root = popover().contentView;
        press(root, "Show % Used in Menu Bar");
        EXPECT_EQ(NSWidth(statusButton().bounds), 94);
        EXPECT_FALSE(first<NSPopUpButton>(root, 1).enabled);
        choose(first<NSPopUpButton>(root), 1);
        settleAll();
        EXPECT_TRUE(first<NSPopUpButton>(root, 1).enabled);
        choose(first<NSPopUpButton>(root, 1), 0);
        press(root, "Launch at Login");
        settleAll();
        EXPECT_EQ(world.preferences->values,
                  (decltype(world.preferences->values){
                      {"showUsedPercentage", true}, {"barStyle", "macOSSegments"}, {"segmentSizing", "equal"}}));
        EXPECT_TRUE(world.agentFileExists);
        press(root, "Storage Settings…");
        EXPECT_FALSE(popover());
    });
}

TEST_F(AppKitShellTest, EachRightClickOpensANewMenu) {
    run([&] {
        pressStatusItem(NSEventTypeRightMouseUp);
        NSMenu* menu = takeMenu();
        ASSERT_TRUE(menu);
        EXPECT_FALSE(popover());
        EXPECT_FALSE(choose(menu, "Equal Colors")) << "its parent is disabled";
        EXPECT_TRUE(choose(menu, "macOS Storage Colors"));
        EXPECT_TRUE(choose(menu, "Show % Used"));
        settleAll();
        EXPECT_EQ(NSWidth(statusButton().bounds), 94);
        pressStatusItem(NSEventTypeRightMouseUp);
        menu = takeMenu();
        EXPECT_EQ(menu.itemArray[3].state, NSControlStateValueOn);
        EXPECT_TRUE(choose(menu, "Equal Colors"));
        EXPECT_TRUE(choose(menu, "Show % Used"));
        settleAll();
        EXPECT_EQ(NSWidth(statusButton().bounds), 60);
    });
    run([&] {
        Desktop::reset();
        delegate->showContextMenu();
        EXPECT_FALSE(takeMenu()) << "without an event there is no menu";
    });
}

TEST_F(AppKitShellTest, ARightClickThatTheSystemDoesNotSendOpensTheMenuBelowTheItem) {
    run([&] {
        Desktop::get().statusItemsActOnRightClicks = false;
        pressStatusItem();
        pressStatusItem();
        pressStatusItem(NSEventTypeRightMouseUp);
        NSMenu* const menu = takeMenu();
        EXPECT_TRUE(menu && choose(menu, "Refresh"));
    });
}

TEST_F(AppKitShellTest, FilesAreMovedOnlyAfterTheSheetSaysSo) {
    world.cleanup.report = reportOf({logAt("/home/ada/Library/Logs/one.log"), logAt("/home/ada/Library/Logs/two.log"),
                                     candidateAt("/home/ada/Downloads/photos.zip", CleanupCategory::archive)});
    run([&] {
        pressStatusItem();
        press(popover().contentView, "Free Up Space…");
        EXPECT_FALSE(popover());
        ASSERT_TRUE(cleanup());
        press(cleanup(), "Select Low-Risk Files");
        press(cleanup(), "Move to Trash…");
        EXPECT_TRUE(keyWindow() != cleanup().window);
        apple::press(returnKey, true);
        settleAll();
        apple::press(escapeKey);
        settleAll();
        EXPECT_THAT(world.log->only({"cleanup.move"}), IsEmpty());
        press(cleanup(), "Move to Trash…");
        apple::press(returnKey);
        settleAll();
        EXPECT_THAT(world.log->only({"cleanup.move"}), ElementsAre("cleanup.move /home/ada/Library/Logs/one.log",
                                                                   "cleanup.move /home/ada/Library/Logs/two.log"));
        EXPECT_TRUE(viewTitled(cleanup(), "Moved 2 items to the Trash · a privacy-safe local record was saved"));
        EXPECT_TRUE(viewTitled(cleanup(), "photos.zip"));
        EXPECT_FALSE(viewTitled(cleanup(), "one.log"));
    });
}

TEST_F(AppKitShellTest, ClosingTheWindowAnswersItsSheetAndTheNextOpeningScansAgain) {
    world.cleanup.report = reportOf({logAt("/home/ada/Library/Logs/one.log")});
    run([&] {
        delegate->showCleanupWindow();
        settleAll();
        press(cleanup(), "Select Low-Risk Files");
        press(cleanup(), "Move to Trash…");
        [cleanup().window close];
        settleAll();
        EXPECT_FALSE(cleanup());
        delegate->showCleanupWindow();
        settleAll();
        EXPECT_TRUE(cleanup());
        EXPECT_THAT(world.log->only({"cleanup.scan", "cleanup.move"}), ElementsAre("cleanup.scan", "cleanup.scan"));
    });
}

TEST_F(AppKitShellTest, ControlsThatOutliveTheApplicationDoNothing) {
    @autoreleasepool {
        AppKitShell shell;
        delegate = std::make_shared<AppDelegate>(shell, world.appServices());
        shell.setDelegate(delegate);
        delegate->applicationDidFinishLaunching();
        delegate->showPopover();
        delegate->showCleanupWindow();
        settleAll();
        NSView* const root = cleanup();
        delegate.reset();
        world.log->clear();
        press(root, "Scan Again");
        pressStatusItem();
        pressStatusItem(NSEventTypeRightMouseUp);
        EXPECT_THAT(world.log->calls(), IsEmpty());
        EXPECT_FALSE(takeMenu());
    }
}

} // namespace vantry::apple
