#include "tests/app/AppDelegateFixture.h"

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Stored = std::map<std::string, FakePreferencesStore::Value, std::less<>>;

// The user's choices. The popover and the menu call the same operations.
using AppDelegateChoices = AppDelegateFixture;

TEST_F(AppDelegateChoices, AStyleIsStoredAndShownAndOnlyCurrentThemeSamplesTheWallpaper) {
    launchAndSettle();
    for (const auto& [style, rawValue, displayName] : allBarStyles) {
        for (const bool again : {false, true}) {
            SCOPED_TRACE(std::string(rawValue) + (again ? " again" : ""));
            log.clear();
            delegate->storagePopoverRequestedBarStyleChange(style);
            EXPECT_EQ(log.calls().front(), "preferences.write barStyle " + std::string(rawValue));
            EXPECT_EQ(world.preferences->values, (Stored{{"barStyle", std::string(rawValue)}}));
            EXPECT_THAT(log.only({"shell."}), ElementsAre("shell.showStatusItem", "shell.renderPopover"));
            EXPECT_EQ(shell.statusItem().view.barStyle, style);
            EXPECT_EQ(shell.popover().barView.barStyle, style);
            EXPECT_EQ(shell.popover().usedSwatchView.barStyle, style);
            EXPECT_EQ(shell.popover().barStylePopUp.selectedIndex, static_cast<std::size_t>(style));
            EXPECT_EQ(shell.popover().segmentSizingPopUp.enabled, style == BarStyle::macOSSegments);
            world.settle();
            EXPECT_EQ(log.count("wallpaper.palette"), style == BarStyle::currentTheme ? 1 : 0);
            EXPECT_EQ(log.count("wallpaper.find"), style == BarStyle::currentTheme ? 1 : 0);
            EXPECT_EQ(log.count("volume.read"), 0);
        }
    }
}

TEST_F(AppDelegateChoices, ThePercentageIsStoredAndMakesTheItemWider) {
    launchAndSettle();
    for (const bool enabled : {true, false, false, true, true}) {
        for (const bool persist : {true, false}) {
            log.clear();
            delegate->updatePercentageDisplay(enabled, persist);
            EXPECT_THAT(log.calls(),
                        ElementsAre(std::string("preferences.write showUsedPercentage ") + (enabled ? "true" : "false"),
                                    "shell.showStatusItem", "shell.renderPopover"));
            EXPECT_EQ(world.preferences->values, (Stored{{"showUsedPercentage", enabled}}));
            EXPECT_EQ(shell.statusItem().length, enabled ? 94 : 60);
            EXPECT_EQ(shell.statusItem().view.showsPercentageLabel, enabled);
            EXPECT_EQ(shell.popover().showPercentageButton.checked, enabled);
        }
    }
}

TEST_F(AppDelegateChoices, TheCheckBoxSendsItsStateAndNotTheInverseOfTheStoredOne) {
    launchAndSettle();
    world.preferences->values = {{"showUsedPercentage", true}};
    delegate->popoverController().percentageDisplayChanged(true);
    EXPECT_EQ(world.preferences->values, (Stored{{"showUsedPercentage", true}}));
    EXPECT_EQ(shell.statusItem().length, 94);
}

TEST_F(AppDelegateChoices, ASizingIsStoredAndShown) {
    launchAndSettle();
    delegate->storagePopoverRequestedBarStyleChange(BarStyle::macOSSegments);
    for (const auto& [sizing, rawValue, displayName] : allSegmentSizings) {
        for (const bool persist : {true, false}) {
            SCOPED_TRACE(rawValue);
            log.clear();
            delegate->updateSegmentSizing(sizing, persist);
            EXPECT_THAT(log.calls(), ElementsAre("preferences.write segmentSizing " + std::string(rawValue),
                                                 "shell.showStatusItem", "shell.renderPopover"));
            EXPECT_EQ(shell.statusItem().view.segmentSizing, sizing);
            EXPECT_EQ(shell.popover().barView.segmentSizing, sizing);
            EXPECT_EQ(shell.popover().usedSwatchView.segmentSizing, sizing);
            EXPECT_EQ(shell.popover().segmentSizingPopUp.selectedIndex, static_cast<std::size_t>(sizing));
            EXPECT_THAT(shell.popover().detailLabel.text,
                        testing::StartsWith(sizing == SegmentSizing::equal ? "Each macOS category" : "Widths use"));
        }
    }
}

TEST_F(AppDelegateChoices, LaunchAtLoginFollowsTheFile) {
    launchAndSettle();
    for (const bool enabled : {true, true, false, false}) {
        log.clear();
        delegate->setLaunchAtLogin(enabled);
        EXPECT_EQ(log.count(enabled ? "loginItem.setEnabled true" : "loginItem.setEnabled false"), 1);
        EXPECT_EQ(world.agentFileExists, enabled);
        EXPECT_EQ(
            shell.popover().launchAtLoginButton,
            (CheckBoxContent{"Launch at Login", "Starts Ombrel silently in the menu bar when you log in.", enabled}));
        EXPECT_EQ(shell.popover().errorLabel, (LabelContent{"", SystemColor::red, true}));
    }
}

TEST_F(AppDelegateChoices, AFailureToChangeLoginItemsIsShownAndTheCheckBoxReadAgain) {
    struct Case {
        bool exists;
        bool wanted;
    };
    for (const auto& [exists, wanted] : {Case{false, true}, Case{true, false}, Case{true, true}}) {
        world.agentFileExists = exists;
        world.loginItemError.reset();
        launchAndSettle();
        world.loginItemError = Error{ErrorKind::permissionDenied, "LaunchAgents: Permission denied"};
        delegate->setLaunchAtLogin(wanted);
        EXPECT_EQ(shell.popover().launchAtLoginButton.checked, exists);
        EXPECT_EQ(
            shell.popover().errorLabel,
            (LabelContent{"Could not change Login Items: LaunchAgents: Permission denied", SystemColor::red, false}));
        EXPECT_THAT(log.only({"loginItem.setEnabled", "loginItem.isEnabled", "shell."}),
                    ElementsAre(wanted ? "loginItem.setEnabled true" : "loginItem.setEnabled false",
                                "loginItem.isEnabled", "shell.showStatusItem", "shell.renderPopover"));
    }
}

TEST_F(AppDelegateChoices, ASuccessfulChangeOfLoginItemsClearsTheError) {
    launchAndSettle();
    world.loginItemError = Error{ErrorKind::noSpace, "No space left on device"};
    delegate->setLaunchAtLogin(true);
    ASSERT_FALSE(shell.popover().errorLabel.hidden);
    world.loginItemError.reset();
    delegate->setLaunchAtLogin(true);
    EXPECT_EQ(shell.popover().errorLabel, (LabelContent{"", SystemColor::red, true}));
    EXPECT_TRUE(shell.popover().launchAtLoginButton.checked);
}

TEST_F(AppDelegateChoices, ASuccessfulReadClearsTheLoginItemsError) {
    launchAndSettle();
    world.loginItemError = Error{ErrorKind::noSpace, "No space left on device"};
    delegate->setLaunchAtLogin(true);
    delegate->refreshStorage();
    world.settle();
    EXPECT_TRUE(shell.popover().errorLabel.hidden);
}

TEST_F(AppDelegateChoices, EveryControlOfThePopoverReachesItsOperation) {
    struct Case {
        std::string name;
        std::function<void(StoragePopoverViewController&)> act;
        std::vector<std::string> asked; ///< without reads and rendering
    };
    const std::vector<Case> cases{
        {"refresh",
         [](auto& controls) { controls.refreshPressed(); },
         {"volume.read", "wallpaper.find Built-in", "wallpaper.palette /pictures/lake.heic 7"}},
        {"settings",
         [](auto& controls) { controls.settingsPressed(); },
         {"shell.closePopover", "workspace.openURL x-apple.systempreferences:com.apple.settings.Storage"}},
        {"cleanup",
         [](auto& controls) { controls.cleanupPressed(); },
         {"shell.closePopover", "cleanup.makeServices", "shell.showCleanupWindow", "cleanup.scan"}},
        {"quit", [](auto& controls) { controls.quitPressed(); }, {"shell.terminate"}},
        {"login on", [](auto& controls) { controls.loginItemChanged(true); }, {"loginItem.setEnabled true"}},
        {"login off", [](auto& controls) { controls.loginItemChanged(false); }, {"loginItem.setEnabled false"}},
        {"percentage on",
         [](auto& controls) { controls.percentageDisplayChanged(true); },
         {"preferences.write showUsedPercentage true"}},
        {"percentage off",
         [](auto& controls) { controls.percentageDisplayChanged(false); },
         {"preferences.write showUsedPercentage false"}},
        {"style", [](auto& controls) { controls.barStyleChanged(2); }, {"preferences.write barStyle vividTheme"}},
        {"sizing", [](auto& controls) { controls.segmentSizingChanged(0); }, {"preferences.write segmentSizing equal"}},
    };
    for (const auto& [name, act, asked] : cases) {
        SCOPED_TRACE(name);
        launchAndSettle();
        act(delegate->popoverController());
        world.settle();
        EXPECT_THAT(log.only({"volume.", "wallpaper.find", "wallpaper.palette", "workspace.openURL", "cleanup.",
                              "loginItem.setEnabled", "preferences.write", "shell.closePopover", "shell.openPopover",
                              "shell.showCleanupWindow", "shell.popUpContextMenu", "shell.terminate"}),
                    ElementsAreArray(asked));
    }
}

TEST_F(AppDelegateChoices, AChangeShowsInTheOpenPopoverWithoutReopening) {
    launchAndSettle();
    delegate->showPopover();
    ASSERT_FALSE(shell.popover().segmentSizingPopUp.enabled);
    ASSERT_EQ(shell.popover().segmentSizingLabel.color, SystemColor::disabledControlText);
    log.clear();
    delegate->popoverController().barStyleChanged(1);
    EXPECT_TRUE(shell.popover().segmentSizingPopUp.enabled);
    EXPECT_EQ(shell.popover().segmentSizingLabel.color, SystemColor::label);
    EXPECT_TRUE(shell.popoverShown);
    EXPECT_THAT(log.only({"shell.openPopover", "shell.closePopover"}), IsEmpty());
}

} // namespace

} // namespace vantry
