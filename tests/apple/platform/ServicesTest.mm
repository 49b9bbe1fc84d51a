// What platform/apple asks of the desktop and of the main thread's event loop.

#include "platform/apple/Services.h"

#include "tests/apple/AppKitFixture.h"
#include "tests/platform/contract/ItemFactsFixture.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <memory>
#include <thread>
#include <unistd.h>

namespace vantry::apple {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using std::chrono::milliseconds;

class AppleServices : public AppKitFixture {
protected:
    std::vector<std::string> log;
    std::unique_ptr<Subscription> subscription;
};

} // namespace

TEST_F(AppleServices, PostedBlocksRunInTheirOrderAndAreDestroyedOnTheMainThread) {
    const auto queue = makeMainQueue();
    const auto main = std::this_thread::get_id();
    std::thread::id destroyedOn;
    std::thread([&] {
        auto captured = std::shared_ptr<int>(new int(0), [&](const int* value) {
            delete value;
            destroyedOn = std::this_thread::get_id();
        });
        queue->post([&log = log, captured = std::move(captured)] { log.emplace_back("first"); });
    }).join();
    queue->post([&] {
        log.emplace_back("second");
        queue->post([&] { log.emplace_back("later"); });
    });
    EXPECT_THAT(log, IsEmpty());
    runPosted();
    EXPECT_THAT(log, ElementsAre("first", "second", "later"));
    EXPECT_EQ(destroyedOn, main);
}

TEST_F(AppleServices, ATimerRepeatsUntilItsSubscriptionEndsWhichItMayDoItself) {
    const auto queue = makeMainQueue();
    subscription = queue->repeatEvery(milliseconds(60'000), [&] { log.emplace_back("minute"); });
    advance(milliseconds(59'999));
    EXPECT_THAT(log, IsEmpty());
    advance(milliseconds(60'001));
    EXPECT_EQ(log.size(), 2U);
    subscription.reset();
    advance(milliseconds(60'000));
    EXPECT_EQ(log.size(), 2U);
    const auto held = std::make_shared<int>(0);
    subscription = queue->repeatEvery(milliseconds(10), [this, held] {
        subscription.reset();
        log.push_back(std::to_string(held.use_count() > 1));
    });
    advance(milliseconds(100));
    EXPECT_EQ(log.size(), 3U);
    EXPECT_EQ(log.back(), "1") << "a block lives until it returns";
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(AppleServices, ADescriptorIsWatchedThoughItsOwnerClosesIt) {
    const auto queue = makeMainQueue();
    const auto before = openDescriptorCount();
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    subscription = queue->whenReadable(ends[0], [&] {
        char letter = 0;
        ASSERT_EQ(read(ends[0], &letter, 1), 1);
        log.emplace_back(1, letter);
    });
    runPosted();
    EXPECT_THAT(log, IsEmpty());
    ASSERT_EQ(write(ends[1], "ab", 2), 2);
    runPosted();
    runPosted();
    EXPECT_THAT(log, ElementsAre("a", "b"));
    ASSERT_EQ(write(ends[1], "c", 1), 1);
    subscription.reset();
    close(ends[0]);
    close(ends[1]);
    runPosted();
    EXPECT_EQ(log.size(), 2U);
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST_F(AppleServices, WakingUpIsToldUntilTheSubscriptionEnds) {
    const auto workspace = makeWorkspace();
    subscription = workspace->observeWake([&] { log.emplace_back("awake"); });
    wakeFromSleep();
    subscription.reset();
    wakeFromSleep();
    EXPECT_THAT(log, ElementsAre("awake"));
    subscription = workspace->observeWake([&] {
        subscription.reset();
        log.emplace_back("once");
    });
    wakeFromSleep();
    wakeFromSleep();
    EXPECT_THAT(log, ElementsAre("awake", "once"));
}

TEST_F(AppleServices, ASettingsPaneThatDoesNotOpenOpensTheSettings) {
    const auto workspace = makeWorkspace();
    const std::string pane = "x-apple.systempreferences:com.apple.settings.Storage";
    const std::vector<std::string>& opened = Desktop::get().opened;
    workspace->openSettingsPane(pane);
    runPosted();
    EXPECT_THAT(opened, ElementsAre(pane));
    Desktop::get().unopenable = {pane};
    workspace->openSettingsPane(pane);
    EXPECT_EQ(opened.size(), 2U);
    runPosted();
    EXPECT_EQ(opened.back(), "/System/Applications/System Settings.app");
    workspace->openURL(pane);
    workspace->openURL("\xff");
    workspace->openItem("/missing");
    runPosted();
    EXPECT_THAT(std::vector(opened.begin() + 3, opened.end()), ElementsAre(pane, "/missing")) << "quietly";
    EXPECT_TRUE(workspace->canOpenURL(pane));
}

TEST_F(AppleServices, FoldersAndApplicationsCanBeOpenedAndItemsRevealed) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    const auto workspace = makeWorkspace();
    EXPECT_TRUE(workspace->canOpenItem(folder.path()));
    EXPECT_FALSE(workspace->canOpenItem(folder / "file"));
    EXPECT_FALSE(workspace->canOpenItem(folder / "missing"));
    workspace->revealItem(folder / "file");
    EXPECT_THAT(Desktop::get().revealed, ElementsAre((folder / "file").native()));
}

// As on a network volume, which is not asked.
TEST_F(AppleServices, AFolderThatCannotBeLookedUpMayBeOpened) {
    struct Nobody : Items {
        using Items::asNobody;
    };
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "closed/folder");
    std::filesystem::permissions(folder / "closed", {});
    EXPECT_TRUE(Nobody::asNobody([&] { return makeWorkspace()->canOpenItem(folder / "closed/folder"); }));
    std::filesystem::permissions(folder / "closed", std::filesystem::perms::owner_all);
}

TEST_F(AppleServices, ACopiedTextReplacesWhatWasOnThePasteboard) {
    const auto workspace = makeWorkspace();
    auto& pasteboard = Desktop::get().pasteboard;
    pasteboard = {{"public.png", "a picture"}, {"public.utf8-plain-text", "its name"}};
    const auto before = pasteboard;
    workspace->copyText("\xff");
    EXPECT_EQ(pasteboard, before) << "there is nothing to copy";
    workspace->copyText("pip cache purge");
    EXPECT_THAT(pasteboard, ElementsAre(std::pair("public.utf8-plain-text", "pip cache purge")));
}

TEST_F(AppleServices, ScreensAreCountedFromTheTopOfTheFirst) {
    const auto workspace = makeWorkspace();
    Desktop::get().displays = {{"Built-in", NSMakeRect(0, 0, 1440, 900)}, {"Above", NSMakeRect(-100, 900, 2000, 1000)}};
    const auto screens = workspace->screens();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].name, "Built-in");
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1440, 900}));
    EXPECT_EQ(screens[1].name, "Above");
    EXPECT_EQ(screens[1].frame, (Rect{-100, -1000, 2000, 1000}));
    EXPECT_EQ(workspace->mainScreen()->frame, screens[0].frame);
    Desktop::get().displays.clear();
    EXPECT_TRUE(workspace->screens().empty());
    EXPECT_FALSE(workspace->mainScreen());
}

TEST_F(AppleServices, RunningApplicationsAreToldByTheirIdentifiers) {
    Desktop::get().running = {"com.apple.finder", "", "app.ombrel.Ombrel"};
    EXPECT_THAT(makeWorkspace()->runningBundleIdentifiers(), ElementsAre("com.apple.finder", "app.ombrel.Ombrel"));
}

TEST_F(AppleServices, WindowsAreListedAsFarAsTheSystemDescribesThem) {
    const auto list = makeWindowList();
    EXPECT_TRUE(list->onScreenWindows().empty()) << "nobody may know";
    @autoreleasepool {
        Desktop::get().windows = @[
            @{
                (__bridge NSString*)kCGWindowOwnerName : @"Dock",
                (__bridge NSString*)kCGWindowOwnerPID : @77,
                (__bridge NSString*)kCGWindowLayer : @-3,
                (__bridge NSString*)kCGWindowBounds : @{@"X" : @1, @"Y" : @2, @"Width" : @30, @"Height" : @40}
            },
            @{(__bridge NSString*)kCGWindowOwnerName : @5,
              (__bridge NSString*)kCGWindowBounds : @"none"}
        ];
        const auto windows = list->onScreenWindows();
        ASSERT_EQ(windows.size(), 2U);
        EXPECT_EQ(windows[0], (WindowInfo{"Dock", 77, {1, 2, 30, 40}, -3}));
        EXPECT_EQ(windows[1], (WindowInfo{"", 0, {}, 0}));
        Desktop::get().windows = nil;
    }
}

TEST_F(AppleServices, PreferencesAreTheStandardDefaults) {
    @autoreleasepool {
        const auto store = makePreferencesStore();
        NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
        EXPECT_FALSE(store->boolForKey("key"));
        EXPECT_EQ(store->stringForKey("key"), std::nullopt);
        store->setBool("key", true);
        EXPECT_TRUE(store->boolForKey("key"));
        EXPECT_EQ(store->stringForKey("key"), std::nullopt) << "a number is no text";
        store->setString("key", "text");
        EXPECT_EQ(store->stringForKey("key"), "text");
        EXPECT_FALSE(store->boolForKey("key"));
        EXPECT_EQ(textOf([defaults objectForKey:@"key"]), "text");
        store->setString("key", "\xff");
        store->setString("\xff", "text");
        EXPECT_EQ(store->stringForKey("key"), "text");
        EXPECT_EQ(store->stringForKey("\xff"), std::nullopt);
        [defaults removeObjectForKey:@"key"];
    }
}

} // namespace vantry::apple
