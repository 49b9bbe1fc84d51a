#include "app/LaunchAtLoginController.h"
#include "rendering/WallpaperThemeReader.h"
#include "tests/app/AppDelegateFixture.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using AppDelegateLaunch = AppDelegateFixture;

TEST_F(AppDelegateLaunch, TakesItsStepsInOrder) {
    world.agentFileExists = true;
    world.arguments = {"--show-cleanup"};
    launch();
    EXPECT_THAT(log.only({"shell.becomeAccessory", "loginItem.refreshIfEnabled", "backgroundQueue.", "mainQueue.",
                          "workspace.observeWake"}),
                ElementsAre("shell.becomeAccessory", "loginItem.refreshIfEnabled", "backgroundQueue.submit utility",
                            "backgroundQueue.submit utility", "mainQueue.post", "mainQueue.repeatEvery 60000 ms",
                            "workspace.observeWake"));
}

TEST_F(AppDelegateLaunch, BecomesAnAccessoryBeforeAnythingElseAndObservesWakingLast) {
    world.agentFileExists = true;
    launch();
    EXPECT_EQ(log.calls().front(), "shell.becomeAccessory");
    EXPECT_EQ(log.calls().back(), "workspace.observeWake");
}

TEST_F(AppDelegateLaunch, ReadsTheVolumeBeforeItLooksForTheWallpaper) {
    launch();
    world.backgroundQueue->runNext();
    world.backgroundQueue->runNext();
    EXPECT_THAT(log.only({"volume.", "wallpaper.find"}), ElementsAre("volume.read", "wallpaper.find Built-in"));
}

TEST_F(AppDelegateLaunch, DoesNothingSlowByItself) {
    world.arguments = {"--show-cleanup"};
    launch();
    EXPECT_THAT(log.only({"volume.", "wallpaper.", "cleanup.", "shell.showCleanupWindow"}), IsEmpty());
}

TEST_F(AppDelegateLaunch, RewritesTheLaunchAgentOnlyWhenThereIsOne) {
    const TemporaryFolder home;
    const ScopedEnvironment configuration("XDG_CONFIG_HOME", (home / "configuration").c_str());
    const LaunchAtLoginController::Environment environment{
        .home = home.path(), .runningApplication = "/opt/ombrel/bin/ombrel", .installedApplications = {}};
    const auto agent = LaunchAtLoginController::launchAgentURL(environment);
    AppServices services = world.appServices();
    services.loginItem.refreshIfEnabled = [environment] {
        return LaunchAtLoginController::refreshIfEnabled(environment);
    };
    launchWith(services);
    EXPECT_TRUE(std::filesystem::is_empty(home.path()));

    ASSERT_TRUE(LaunchAtLoginController::setEnabled(environment, true));
    writeFile(agent, "of an application that has moved");
    launchWith(services);
    EXPECT_THAT(readFile(agent), testing::HasSubstr("<string>/opt/ombrel/bin/ombrel</string>"));
    EXPECT_EQ(log.count("loginItem.setEnabled"), 0);
}

TEST_F(AppDelegateLaunch, IgnoresAFailureToRewriteTheLaunchAgent) {
    world.agentFileExists = true;
    world.loginItemError = Error{ErrorKind::noSpace, "No space left on device"};
    launch();
    EXPECT_EQ(log.calls().back(), "workspace.observeWake");
    EXPECT_EQ(shell.popover().errorLabel, (LabelContent{"", SystemColor::red, true}));
    EXPECT_TRUE(shell.popover().launchAtLoginButton.checked);
    EXPECT_EQ(shell.statusItem().tooltip, "Ombrel");
}

TEST_F(AppDelegateLaunch, ShowsTheItemOfAFreshUser) {
    launch();
    StatusItemContent expected;
    expected.length = 60;
    expected.tooltip = "Ombrel";
    expected.accessibilityLabel = "";
    expected.view.snapshot = std::nullopt;
    expected.view.barHeight = 7;
    expected.view.horizontalInset = 5;
    expected.view.exposesAccessibility = false;
    expected.view.barStyle = BarStyle::storageGradient;
    expected.view.segmentSizing = SegmentSizing::verifiedSnapshot;
    expected.view.showsPercentageLabel = false;
    expected.menu = contextMenuContent({});
    EXPECT_THAT(shell.statusItems, testing::Each(expected)) << "no half-made item may flash up";
}

TEST_F(AppDelegateLaunch, TakesTheItemFromTheStore) {
    world.preferences->values = {{"showUsedPercentage", true}, {"barStyle", "vividTheme"}, {"segmentSizing", "equal"}};
    launch();
    EXPECT_EQ(shell.statusItem().length, 94);
    EXPECT_TRUE(shell.statusItem().view.showsPercentageLabel);
    EXPECT_EQ(shell.statusItem().view.barStyle, BarStyle::vividTheme);
    EXPECT_EQ(shell.statusItem().view.segmentSizing, SegmentSizing::equal);
}

TEST_F(AppDelegateLaunch, ConfiguresThePopoverFromStoreAndAgentFile) {
    struct Case {
        BarStyle style;
        SegmentSizing sizing;
        bool percentage;
        bool agentFile;
    };
    const std::vector<Case> cases{
        {BarStyle::storageGradient, SegmentSizing::equal, false, true},
        {BarStyle::macOSSegments, SegmentSizing::verifiedSnapshot, true, false},
        {BarStyle::vividTheme, SegmentSizing::equal, true, true},
        {BarStyle::currentTheme, SegmentSizing::verifiedSnapshot, false, false},
    };
    for (const auto& [style, sizing, percentage, agentFile] : cases) {
        SCOPED_TRACE(rawValue(style));
        world.preferences->values = {{"showUsedPercentage", percentage},
                                     {"barStyle", std::string(rawValue(style))},
                                     {"segmentSizing", std::string(rawValue(sizing))}};
        world.agentFileExists = agentFile;
        launch();
        const PopoverContent& popover = shell.popover();
        EXPECT_EQ(popover.launchAtLoginButton.checked, agentFile);
        EXPECT_EQ(popover.launchAtLoginButton.tooltip, "Starts Ombrel silently in the menu bar when you log in.");
        EXPECT_EQ(popover.showPercentageButton.checked, percentage);
        EXPECT_EQ(popover.barView.barStyle, style);
        EXPECT_EQ(popover.usedSwatchView.barStyle, style);
        EXPECT_EQ(popover.barStylePopUp.selectedIndex, static_cast<std::size_t>(style));
        EXPECT_EQ(popover.barView.segmentSizing, sizing);
        EXPECT_EQ(popover.usedSwatchView.segmentSizing, sizing);
        EXPECT_EQ(popover.segmentSizingPopUp.selectedIndex, static_cast<std::size_t>(sizing));
        EXPECT_EQ(popover.segmentSizingPopUp.enabled, style == BarStyle::macOSSegments);
        EXPECT_EQ(popover.summaryLabel.text, "Loading storage…");
        EXPECT_NE(popover.detailLabel.text, PopoverContent{}.detailLabel.text) << "one of the five texts by then";
    }
}

TEST_F(AppDelegateLaunch, ConfiguresThePopoverBeforeTheFirstReadStarts) {
    world.preferences->values = {{"barStyle", "vividTheme"}};
    launch();
    EXPECT_THAT(log.only({"shell.renderPopover", "backgroundQueue."})[0], "shell.renderPopover");
    EXPECT_EQ(shell.popovers.front().barStylePopUp.selectedIndex, 2);
}

TEST_F(AppDelegateLaunch, GivesThePopoverTheFallbackColorsUntilAWallpaperIsSampled) {
    launch();
    EXPECT_THAT(shell.popover().barView.themeColors, ElementsAreArray(WallpaperThemeReader::fallbackPalette));
    EXPECT_THAT(shell.popover().usedSwatchView.themeColors, ElementsAreArray(WallpaperThemeReader::fallbackPalette));
}

TEST_F(AppDelegateLaunch, ThePopoverReportsToTheDelegate) {
    launchAndSettle();
    delegate->popoverController().quitPressed();
    EXPECT_THAT(log.calls(), ElementsAre("shell.terminate"));
}

TEST_F(AppDelegateLaunch, ShowsTheCleanupWindowOnlyAfterTheLaunchIsOver) {
    world.arguments = {"--something", "--show-cleanup", "more"};
    launch();
    EXPECT_THAT(log.only({"cleanup.", "shell.showCleanupWindow"}), IsEmpty());
    ASSERT_EQ(world.mainQueue->postedCount(), 1);
    world.mainQueue->runNext();
    EXPECT_THAT(log.only({"cleanup.", "shell.showCleanupWindow"}),
                ElementsAre("cleanup.makeServices", "shell.showCleanupWindow"));
}

TEST_F(AppDelegateLaunch, AcceptsNoOtherSpellingOfShowCleanup) {
    const std::vector<std::vector<std::string>> cases{
        {},         {"--Show-Cleanup"},   {"-show-cleanup"},  {"show-cleanup"},       {"--show-cleanup "},
        {"--show"}, {"--show-cleanup=1"}, {"--show_cleanup"}, {"--show", "-cleanup"}, {"--show-cleanups"}};
    for (const auto& arguments : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        world.arguments = arguments;
        launch();
        EXPECT_EQ(world.mainQueue->postedCount(), 0);
        world.settle();
        EXPECT_THAT(log.only({"cleanup.", "shell.showCleanupWindow"}), IsEmpty());
    }
}

TEST_F(AppDelegateLaunch, CreatesTheCleanupWindowOnce) {
    world.arguments = {"--show-cleanup", "--show-cleanup"};
    launch();
    world.settle();
    delegate->showCleanupWindow();
    EXPECT_THAT(
        log.only({"cleanup.", "shell.showCleanupWindow"}),
        ElementsAre("cleanup.makeServices", "shell.showCleanupWindow", "cleanup.scan", "shell.showCleanupWindow"));
}

TEST_F(AppDelegateLaunch, ReadsAndSamplesOnEveryTickOfTheTimer) {
    launchAndSettle();
    for (int tick = 1; tick <= 3; ++tick) {
        world.mainQueue->fireTimers();
        world.settle();
        EXPECT_EQ(log.count("volume.read"), tick);
        EXPECT_EQ(log.count("wallpaper.find"), tick);
    }
    EXPECT_EQ(log.count("wallpaper.palette"), 0) << "a tick does not force the sampling";
}

TEST_F(AppDelegateLaunch, ReadsAndSamplesOnEveryWake) {
    launchAndSettle();
    for (int wake = 1; wake <= 3; ++wake) {
        world.workspace->wake();
        world.settle();
        EXPECT_EQ(log.count("volume.read"), wake);
        EXPECT_EQ(log.count("wallpaper.palette"), wake) << "waking forces the sampling";
    }
}

TEST_F(AppDelegateLaunch, AsksForTheVolumeBeforeTheWallpaperOnTickAndWake) {
    launchAndSettle();
    const std::vector<std::function<void()>> triggers{[this] { world.mainQueue->fireTimers(); },
                                                      [this] { world.workspace->wake(); },
                                                      [this] { delegate->storagePopoverRequestedRefresh(); }};
    for (const auto& trigger : triggers) {
        log.clear();
        trigger();
        world.settle();
        EXPECT_THAT(log.only({"volume.", "wallpaper.find"}), ElementsAre("volume.read", "wallpaper.find Built-in"));
    }
}

TEST_F(AppDelegateLaunch, StopsTimerAndObserverWhenTheApplicationEnds) {
    launchAndSettle();
    delegate->applicationWillTerminate();
    EXPECT_THAT(log.calls(), ElementsAre("mainQueue.stopTimer", "workspace.stopObservingWake"));
    world.mainQueue->fireTimers();
    world.workspace->wake();
    world.settle();
    EXPECT_EQ(log.count("volume."), 0);
}

TEST_F(AppDelegateLaunch, MayEndBeforeItLaunched) {
    delegate = std::make_shared<AppDelegate>(shell, world.appServices());
    delegate->applicationWillTerminate();
    EXPECT_THAT(log.calls(), IsEmpty());
}

} // namespace

} // namespace vantry
