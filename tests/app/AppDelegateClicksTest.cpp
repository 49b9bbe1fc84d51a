#include "tests/app/AppDelegateFixture.h"

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using AppDelegateClicks = AppDelegateFixture;

TEST_F(AppDelegateClicks, DependOnTheMouseButton) {
    struct Case {
        std::string name;
        std::optional<MouseEvent> event;
        bool popoverShown;
        std::string call;
    };
    const std::vector<Case> cases{
        {"left on a closed popover", MouseEvent::leftMouseUp, false, "shell.openPopover"},
        {"left on an open popover", MouseEvent::leftMouseUp, true, "shell.closePopover"},
        {"right on a closed popover", MouseEvent::rightMouseUp, false, "shell.popUpContextMenu"},
        {"right on an open popover", MouseEvent::rightMouseUp, true, "shell.popUpContextMenu"},
        {"no event on a closed popover", std::nullopt, false, "shell.openPopover"},
        {"no event on an open popover", std::nullopt, true, "shell.closePopover"},
    };
    launchAndSettle();
    for (const auto& [name, event, popoverShown, call] : cases) {
        SCOPED_TRACE(name);
        shell.popoverShown = popoverShown;
        log.clear();
        delegate->statusItemPressed(event);
        EXPECT_THAT(log.only({"shell.openPopover", "shell.closePopover", "shell.popUpContextMenu"}), ElementsAre(call));
    }
}

TEST_F(AppDelegateClicks, DoNothingWhereTheItemHasNoButton) {
    launchAndSettle();
    shell.hasButton = false;
    for (const auto event : {std::optional(MouseEvent::leftMouseUp), std::optional(MouseEvent::rightMouseUp),
                             std::optional<MouseEvent>()}) {
        for (const bool popoverShown : {false, true}) {
            shell.popoverShown = popoverShown;
            delegate->statusItemPressed(event);
        }
    }
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppDelegateClicks, LeftTogglesThePopover) {
    launchAndSettle();
    for (const bool shown : {true, false, true}) {
        delegate->statusItemPressed(MouseEvent::leftMouseUp);
        EXPECT_EQ(shell.popoverShown, shown);
    }
}

TEST_F(AppDelegateClicks, UpdateThePopoverBeforeItOpens) {
    launchAndSettle();
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_EQ(log.calls().back(), "shell.openPopover");
    EXPECT_THAT(log.only({"shell.renderPopover", "shell.openPopover", "shell.closePopover"}),
                ElementsAre("shell.renderPopover", "shell.openPopover"));
    EXPECT_EQ(log.count("loginItem.isEnabled"), 1);
    EXPECT_EQ(log.count("preferences.read showUsedPercentage"), 1);
    EXPECT_EQ(log.count("preferences.read barStyle"), 1);
    EXPECT_EQ(log.count("preferences.read segmentSizing"), 1);
    EXPECT_EQ(log.count("preferences.write"), 0);
}

TEST_F(AppDelegateClicks, ThePopoverOpensWithTheStoredValuesOfThatMoment) {
    world.agentFileExists = true;
    launchAndSettle();
    world.preferences->values = {
        {"showUsedPercentage", true}, {"barStyle", "macOSSegments"}, {"segmentSizing", "equal"}};
    world.agentFileExists = false;
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    const PopoverContent& popover = shell.popover();
    EXPECT_EQ(popover.titleLabel.text, "Data");
    EXPECT_EQ(popover.summaryLabel.text, "300 GB of 500 GB used");
    EXPECT_EQ(popover.launchAtLoginButton,
              (CheckBoxContent{"Launch at Login", "Starts Ombrel silently in the menu bar when you log in.", false}));
    EXPECT_TRUE(popover.showPercentageButton.checked);
    EXPECT_EQ(popover.barStylePopUp.selectedIndex, 1);
    EXPECT_EQ(popover.barView.barStyle, BarStyle::macOSSegments);
    EXPECT_EQ(popover.usedSwatchView.barStyle, BarStyle::macOSSegments);
    EXPECT_EQ(popover.segmentSizingPopUp.selectedIndex, 0);
    EXPECT_TRUE(popover.segmentSizingPopUp.enabled);
    EXPECT_EQ(popover.barView.segmentSizing, SegmentSizing::equal);
    EXPECT_EQ(popover.usedSwatchView.segmentSizing, SegmentSizing::equal);
    EXPECT_EQ(popover.detailLabel.text,
              "Each macOS category color gets equal width. Total used and available space stay live.");
    EXPECT_EQ(popover.barView.themeColors, *world.palette);
    EXPECT_EQ(popover.usedSwatchView.themeColors, *world.palette);
}

TEST_F(AppDelegateClicks, EveryOpeningStartsFromTheLastGoodRead) {
    launchAndSettle();
    auto& popover = delegate->popoverController();
    popover.update(std::nullopt);
    popover.updateThemeColors({});
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_EQ(shell.popover().barView.snapshot, *world.volume);
    EXPECT_EQ(shell.popover().barView.themeColors, *world.palette);
}

TEST_F(AppDelegateClicks, ThePopoverOpensBeforeTheFirstReadHasEnded) {
    launch();
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_TRUE(shell.popoverShown);
    EXPECT_EQ(shell.popover().titleLabel.text, "Macintosh HD");
    EXPECT_EQ(shell.popover().summaryLabel.text, "Loading storage…");
    EXPECT_EQ(shell.popover().usedValueLabel.text, "—");
    world.settle();
    EXPECT_EQ(shell.popover().titleLabel.text, "Data") << "the open popover follows";
}

TEST_F(AppDelegateClicks, ThePopoverOpensWithTheErrorOfTheFirstRead) {
    world.volume = std::unexpected(StorageReadFailure{StorageReadError::missingCapacity});
    launchAndSettle();
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_EQ(shell.popover().errorLabel,
              (LabelContent{"The total disk capacity is unavailable.", SystemColor::red, false}));
}

TEST_F(AppDelegateClicks, OpeningAfterAnEarlierGoodReadClearsTheError) {
    launchAndSettle();
    world.volume = std::unexpected(StorageReadFailure{StorageReadError::missingCapacity});
    delegate->refreshStorage();
    world.settle();
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_EQ(shell.popover().errorLabel, (LabelContent{"", SystemColor::red, true}));
    EXPECT_EQ(shell.popover().titleLabel.text, "Data");
}

TEST_F(AppDelegateClicks, OpeningReadsNeitherVolumeNorWallpaper) {
    launchAndSettle();
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_THAT(log.only({"backgroundQueue.", "mainQueue.", "volume.", "wallpaper."}), IsEmpty());
}

TEST_F(AppDelegateClicks, ClosingReadsAndDrawsNothing) {
    launchAndSettle();
    shell.popoverShown = true;
    delegate->statusItemPressed(MouseEvent::leftMouseUp);
    EXPECT_THAT(log.calls(), ElementsAre("shell.closePopover"));
}

TEST_F(AppDelegateClicks, AnOpenPopoverIsNotOpenedTwice) {
    launchAndSettle();
    delegate->showPopover();
    delegate->showPopover();
    EXPECT_EQ(log.count("shell.openPopover"), 1);
    EXPECT_EQ(log.count("shell.closePopover"), 0);
}

TEST_F(AppDelegateClicks, RightOpensAMenuWithTheStoredValuesOfThatMoment) {
    launchAndSettle();
    world.preferences->values = {
        {"showUsedPercentage", true}, {"barStyle", "macOSSegments"}, {"segmentSizing", "equal"}};
    world.agentFileExists = true;
    delegate->statusItemPressed(MouseEvent::rightMouseUp);
    EXPECT_EQ(shell.menu, contextMenuContent({.showsUsedPercentage = true,
                                              .barStyle = BarStyle::macOSSegments,
                                              .segmentSizing = SegmentSizing::equal,
                                              .launchesAtLogin = true}));
    EXPECT_THAT(log.only({"shell.", "preferences.write", "loginItem.setEnabled"}),
                ElementsAre("shell.popUpContextMenu"));
}

} // namespace

} // namespace vantry
