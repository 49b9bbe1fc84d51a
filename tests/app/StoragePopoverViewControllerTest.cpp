#include "app/StoragePopoverViewController.h"
#include "platform/TextFormat.h"

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace vantry {

namespace {

using testing::ElementsAre;

const SystemTime refreshTime{std::chrono::seconds(1'700'000'000)};

/// Records what the controls report.
class ReportedCalls : public StoragePopoverDelegate {
public:
    void storagePopoverRequestedRefresh() override { calls.emplace_back("refresh"); }
    void storagePopoverRequestedSettings() override { calls.emplace_back("settings"); }
    void storagePopoverRequestedCleanup() override { calls.emplace_back("cleanup"); }
    void storagePopoverRequestedQuit() override { calls.emplace_back("quit"); }
    void storagePopoverRequestedLoginItemChange(bool enabled) override { add("login", enabled ? "on" : "off"); }
    void storagePopoverRequestedPercentageChange(bool enabled) override { add("percentage", enabled ? "on" : "off"); }
    void storagePopoverRequestedBarStyleChange(BarStyle style) override { add("style", rawValue(style)); }
    void storagePopoverRequestedSegmentSizingChange(SegmentSizing sizing) override { add("sizing", rawValue(sizing)); }

    std::vector<std::string> calls;

private:
    void add(std::string_view call, std::string_view value) {
        calls.push_back(std::string(call) + " " + std::string(value));
    }
};

TEST(StoragePopover, BeginsWithTheseTexts) {
    const StoragePopoverViewController controller(HostSystem::macOS);
    const PopoverContent& content = controller.content();
    EXPECT_EQ(content.size, (Size{380, 452}));
    EXPECT_EQ(content.titleLabel, (LabelContent{"Macintosh HD", SystemColor::label, false}));
    EXPECT_EQ(content.summaryLabel, (LabelContent{"Loading storage\u2026", SystemColor::secondaryLabel, false}));
    EXPECT_EQ(content.usedTitleLabel, (LabelContent{"Used", SystemColor::label, false}));
    EXPECT_EQ(content.usedValueLabel, (LabelContent{"\u2014", SystemColor::label, false}));
    EXPECT_EQ(content.availableTitleLabel, (LabelContent{"Available", SystemColor::label, false}));
    EXPECT_EQ(content.availableValueLabel, (LabelContent{"\u2014", SystemColor::label, false}));
    EXPECT_EQ(
        content.detailLabel,
        (LabelContent{"The color strip shows total used space with the macOS Storage palette. Open Storage Settings "
                      "for Apple\u2019s category breakdown.",
                      SystemColor::secondaryLabel, false}));
    EXPECT_EQ(content.errorLabel, (LabelContent{"", SystemColor::red, true}));
    EXPECT_EQ(content.updateLabel, (LabelContent{"", SystemColor::tertiaryLabel, false}));
    EXPECT_EQ(content.barStyleLabel, (LabelContent{"Bar Style", SystemColor::label, false}));
    EXPECT_EQ(content.segmentSizingLabel.text, "Segment Widths");
}

TEST(StoragePopover, BeginsWithTheseControls) {
    const StoragePopoverViewController controller(HostSystem::macOS);
    const PopoverContent& content = controller.content();
    EXPECT_EQ(
        content.cleanupButton,
        (ButtonContent{"Free Up Space\u2026",
                       "Find explainable cleanup suggestions and review everything before moving it to the Trash."}));
    EXPECT_EQ(content.launchAtLoginButton.title, "Launch at Login");
    EXPECT_FALSE(content.launchAtLoginButton.checked);
    EXPECT_EQ(content.showPercentageButton, (CheckBoxContent{"Show % Used in Menu Bar", "", false}));
    EXPECT_THAT(content.barStylePopUp.items,
                ElementsAre("Rainbow", "macOS Storage Colors", "Vivid Theme", "Current Theme"));
    EXPECT_EQ(content.barStylePopUp.tooltip,
              "Choose Rainbow, macOS Storage Colors, Vivid Theme, or the active wallpaper.");
    EXPECT_THAT(content.segmentSizingPopUp.items, ElementsAre("Equal Colors", "Verified Storage Snapshot"));
    EXPECT_EQ(content.segmentSizingPopUp.tooltip,
              "Use equal-width colors or the latest verified macOS Storage category proportions.");
    EXPECT_EQ(content.refreshButton, (ButtonContent{"Refresh", ""}));
    EXPECT_EQ(content.settingsButton, (ButtonContent{"Storage Settings\u2026", ""}));
    EXPECT_EQ(content.quitButton, (ButtonContent{"Quit", ""}));
}

TEST(StoragePopover, BeginsWithAnEmptyBarAndItsSwatches) {
    const StoragePopoverViewController controller(HostSystem::macOS);
    VantryView bar;
    bar.barHeight = 14;
    bar.horizontalInset = 0;
    EXPECT_EQ(controller.content().barView, bar);
    EXPECT_TRUE(controller.content().barView.exposesAccessibility);
    EXPECT_EQ(controller.content().usedSwatchView, SolidSwatchView(SolidSwatchView::Kind::used));
    EXPECT_EQ(controller.content().availableSwatchView, SolidSwatchView(SolidSwatchView::Kind::available));
}

TEST(StoragePopover, ShowsTheFiguresOfASnapshot) {
    struct Case {
        std::int64_t total;
        std::int64_t available;
        std::string summary;
        std::string used;
        std::string availableText;
    };
    constexpr std::int64_t giga = 1'000'000'000;
    const std::vector<Case> cases{
        {500 * giga, 200 * giga, "300 GB of 500 GB used", "300 GB  \u00B7  60%", "200 GB"},
        {4000 * giga, 1000 * giga, "3 TB of 4 TB used", "3 TB  \u00B7  75%", "1 TB"},
        {100 * giga, 100 * giga, "0 B of 100 GB used", "0 B  \u00B7  0%", "100 GB"},
        {100 * giga, 0, "100 GB of 100 GB used", "100 GB  \u00B7  100%", "0 B"},
        {8 * giga, 7 * giga, "1 GB of 8 GB used", "1 GB  \u00B7  12.5%", "7 GB"},
        {3 * giga, 2 * giga, "1 GB of 3 GB used", "1 GB  \u00B7  33.3%", "2 GB"},
        {0, 0, "0 B of 0 B used", "0 B  \u00B7  0%", "0 B"},
        {-5 * giga, -7 * giga, "2 GB of -5 GB used", "2 GB  \u00B7  0%", "-7 GB"},
        {giga, 2 * giga, "0 B of 1 GB used", "0 B  \u00B7  0%", "2 GB"},
    };
    for (const auto& [total, available, summary, used, availableText] : cases) {
        SCOPED_TRACE(summary);
        const StorageSnapshot snapshot{"Work \"1\"", total, available, refreshTime};
        StoragePopoverViewController controller(HostSystem::macOS);
        PopoverContent expected = controller.content();
        expected.barView.snapshot = snapshot;
        expected.titleLabel.text = "Work \"1\"";
        expected.summaryLabel.text = summary;
        expected.usedValueLabel.text = used;
        expected.availableValueLabel.text = availableText;
        expected.updateLabel.text = "Updated " + shortTimeText(refreshTime);
        controller.update(snapshot);
        EXPECT_EQ(controller.content(), expected);
        EXPECT_EQ(controller.content().summaryLabel.text, summary);
        EXPECT_EQ(controller.content().usedValueLabel.text, used);
        EXPECT_EQ(controller.content().availableValueLabel.text, availableText);
    }
}

TEST(StoragePopover, UsesGigabytesAndTerabytesOnly) {
    StoragePopoverViewController controller(HostSystem::macOS);
    controller.update(StorageSnapshot{"Small", 900'000'000, 400'000'000, refreshTime});
    EXPECT_EQ(controller.content().summaryLabel.text, "0.5 GB of 0.9 GB used");
    EXPECT_EQ(controller.content().availableValueLabel.text, "0.4 GB");
}

TEST(StoragePopover, SaysWhenTheFiguresWereReadAndNotWhenTheyAreShown) {
    StoragePopoverViewController controller(HostSystem::macOS);
    for (const auto age : {std::chrono::hours(0), std::chrono::hours(7), std::chrono::hours(24 * 365)}) {
        controller.update(StorageSnapshot{"Data", 10, 5, refreshTime - age});
        EXPECT_EQ(controller.content().updateLabel.text, "Updated " + shortTimeText(refreshTime - age));
    }
}

TEST(StoragePopover, WithoutASnapshotItWaitsButKeepsTitleAndError) {
    StoragePopoverViewController controller(HostSystem::macOS);
    controller.update(StorageSnapshot{"Data", 1000, 500, refreshTime});
    controller.showError("Disk on fire");
    PopoverContent expected = controller.content();
    expected.barView.snapshot = std::nullopt;
    expected.summaryLabel.text = "Loading storage…";
    expected.usedValueLabel.text = "—";
    expected.availableValueLabel.text = "—";
    expected.updateLabel.text = "";
    controller.update(std::nullopt);
    EXPECT_EQ(controller.content(), expected);
    EXPECT_EQ(controller.content().titleLabel.text, "Data");
    EXPECT_EQ(controller.content().errorLabel, (LabelContent{"Disk on fire", SystemColor::red, false}));
}

TEST(StoragePopover, ASnapshotClearsTheError) {
    StoragePopoverViewController controller(HostSystem::macOS);
    controller.showError("Disk on fire");
    controller.update(StorageSnapshot{"Data", 1000, 500, refreshTime});
    EXPECT_EQ(controller.content().errorLabel, (LabelContent{"", SystemColor::red, true}));
}

TEST(StoragePopover, HidesTheErrorExactlyWhenThereIsNoMessage) {
    struct Case {
        std::optional<std::string> message;
        LabelContent label;
    };
    const std::vector<Case> cases{
        {"Disk on fire", {"Disk on fire", SystemColor::red, false}},
        {std::nullopt, {"", SystemColor::red, true}},
        {"", {"", SystemColor::red, false}},
        {std::nullopt, {"", SystemColor::red, true}},
    };
    StoragePopoverViewController controller(HostSystem::macOS);
    for (const auto& [message, label] : cases) {
        PopoverContent expected = controller.content();
        expected.errorLabel = label;
        controller.showError(message);
        EXPECT_EQ(controller.content(), expected);
    }
}

TEST(StoragePopover, ChecksItsBoxesAndNothingElse) {
    StoragePopoverViewController controller(HostSystem::macOS);
    for (const bool enabled : {true, false, true}) {
        PopoverContent expected = controller.content();
        expected.launchAtLoginButton = {"Launch at Login", "Starts Ombrel silently in the menu bar when you log in.",
                                        enabled};
        controller.updateLoginItemStatus(enabled);
        EXPECT_EQ(controller.content(), expected);
        expected.showPercentageButton = {"Show % Used in Menu Bar", "", enabled};
        controller.updatePercentageStatus(enabled);
        EXPECT_EQ(controller.content(), expected);
    }
}

TEST(StoragePopover, ExplainsStyleAndSizing) {
    struct Case {
        BarStyle style;
        SegmentSizing sizing;
        std::string text;
    };
    using enum BarStyle;
    using enum SegmentSizing;
    const std::string rainbow = "The color strip shows total used space with the current Ombrel palette.";
    const std::string equalWidths =
        "Each macOS category color gets equal width. Total used and available space stay live.";
    const std::string verified =
        "Widths use the latest verified Storage Settings category totals; total disk usage stays live.";
    const std::string vivid =
        "Keeps the fixed blue, purple, pink, red, and orange colors from the previous Current Theme.";
    const std::string wallpaper = "Samples the wallpaper actually rendering on the desktop and adds a soft inner glow.";
    const std::vector<Case> cases{
        {storageGradient, equal, rainbow},   {storageGradient, verifiedSnapshot, rainbow},
        {macOSSegments, equal, equalWidths}, {macOSSegments, verifiedSnapshot, verified},
        {vividTheme, equal, vivid},          {vividTheme, verifiedSnapshot, vivid},
        {currentTheme, equal, wallpaper},    {currentTheme, verifiedSnapshot, wallpaper},
    };
    for (const bool styleFirst : {true, false}) {
        StoragePopoverViewController controller(HostSystem::macOS);
        for (const auto& [style, sizing, text] : cases) {
            SCOPED_TRACE(text);
            if (styleFirst)
                controller.updateBarStyleStatus(style);
            controller.updateSegmentSizingStatus(sizing);
            if (!styleFirst)
                controller.updateBarStyleStatus(style);
            EXPECT_EQ(controller.content().detailLabel.text, text);
            controller.updateDetailText();
            EXPECT_EQ(controller.content().detailLabel, (LabelContent{text, SystemColor::secondaryLabel, false}));
        }
    }
}

TEST(StoragePopover, TheFirstUpdateReplacesTheInitialExplanation) {
    StoragePopoverViewController controller(HostSystem::macOS);
    controller.updateDetailText();
    EXPECT_EQ(controller.content().detailLabel.text,
              "The color strip shows total used space with the current Ombrel palette.");
}

TEST(StoragePopover, ShowsAStyle) {
    StoragePopoverViewController controller(HostSystem::macOS);
    for (std::size_t index = 0; index < allBarStyles.size(); ++index) {
        const BarStyle style = allBarStyles[index].value;
        const bool segments = style == BarStyle::macOSSegments;
        SCOPED_TRACE(rawValue(style));
        PopoverContent expected = controller.content();
        expected.barView.barStyle = style;
        expected.usedSwatchView.barStyle = style;
        expected.barStylePopUp.selectedIndex = index;
        expected.segmentSizingPopUp.enabled = segments;
        expected.segmentSizingLabel.color = segments ? SystemColor::label : SystemColor::disabledControlText;
        controller.updateBarStyleStatus(style);
        expected.detailLabel.text = controller.content().detailLabel.text; // has a table of its own
        EXPECT_EQ(controller.content(), expected);
    }
}

TEST(StoragePopover, ShowsASizing) {
    StoragePopoverViewController controller(HostSystem::macOS);
    for (std::size_t index = 0; index < allSegmentSizings.size(); ++index) {
        const SegmentSizing sizing = allSegmentSizings[index].value;
        SCOPED_TRACE(rawValue(sizing));
        PopoverContent expected = controller.content();
        expected.barView.segmentSizing = sizing;
        expected.usedSwatchView.segmentSizing = sizing;
        expected.segmentSizingPopUp.selectedIndex = index;
        controller.updateSegmentSizingStatus(sizing);
        expected.detailLabel.text = controller.content().detailLabel.text;
        EXPECT_EQ(controller.content(), expected);
    }
}

TEST(StoragePopover, GivesThemeColorsToBarAndUsedSwatchOnly) {
    const std::vector<Rgba> colors{{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}};
    StoragePopoverViewController controller(HostSystem::macOS);
    PopoverContent expected = controller.content();
    expected.barView.themeColors = colors;
    expected.usedSwatchView.themeColors = colors;
    controller.updateThemeColors(colors);
    EXPECT_EQ(controller.content(), expected);
}

constexpr std::size_t outOfSight = std::numeric_limits<std::size_t>::max();

struct ControlCase {
    std::string name;
    std::function<void(StoragePopoverViewController&)> act;
    std::vector<std::string> reported;
};

std::vector<ControlCase> controlCases() {
    return {
        {"refresh", [](auto& controls) { controls.refreshPressed(); }, {"refresh"}},
        {"settings", [](auto& controls) { controls.settingsPressed(); }, {"settings"}},
        {"cleanup", [](auto& controls) { controls.cleanupPressed(); }, {"cleanup"}},
        {"quit", [](auto& controls) { controls.quitPressed(); }, {"quit"}},
        {"login on", [](auto& controls) { controls.loginItemChanged(true); }, {"login on"}},
        {"login off", [](auto& controls) { controls.loginItemChanged(false); }, {"login off"}},
        {"percentage on", [](auto& controls) { controls.percentageDisplayChanged(true); }, {"percentage on"}},
        {"percentage off", [](auto& controls) { controls.percentageDisplayChanged(false); }, {"percentage off"}},
        {"style 0", [](auto& controls) { controls.barStyleChanged(0); }, {"style storageGradient"}},
        {"style 1", [](auto& controls) { controls.barStyleChanged(1); }, {"style macOSSegments"}},
        {"style 2", [](auto& controls) { controls.barStyleChanged(2); }, {"style vividTheme"}},
        {"style 3", [](auto& controls) { controls.barStyleChanged(3); }, {"style currentTheme"}},
        {"style 4", [](auto& controls) { controls.barStyleChanged(4); }, {}},
        {"style far out", [](auto& controls) { controls.barStyleChanged(outOfSight); }, {}},
        {"no style", [](auto& controls) { controls.barStyleChanged(std::nullopt); }, {}},
        {"sizing 0", [](auto& controls) { controls.segmentSizingChanged(0); }, {"sizing equal"}},
        {"sizing 1", [](auto& controls) { controls.segmentSizingChanged(1); }, {"sizing verifiedSnapshot"}},
        {"sizing 2", [](auto& controls) { controls.segmentSizingChanged(2); }, {}},
        {"sizing far out", [](auto& controls) { controls.segmentSizingChanged(outOfSight); }, {}},
        {"no sizing", [](auto& controls) { controls.segmentSizingChanged(std::nullopt); }, {}},
    };
}

TEST(StoragePopover, EachControlReportsOnceAndChangesNothingByItself) {
    for (const auto& [name, act, reported] : controlCases()) {
        SCOPED_TRACE(name);
        const auto delegate = std::make_shared<ReportedCalls>();
        StoragePopoverViewController controller(HostSystem::macOS);
        controller.delegate = delegate;
        act(controller);
        EXPECT_EQ(delegate->calls, reported);
        EXPECT_EQ(controller.content(), StoragePopoverViewController(HostSystem::macOS).content());
    }
}

TEST(StoragePopover, ControlsDoNothingWhenTheDelegateIsGone) {
    for (const auto& [name, act, reported] : controlCases()) {
        SCOPED_TRACE(name);
        StoragePopoverViewController controller(HostSystem::macOS);
        act(controller);
        auto delegate = std::make_shared<ReportedCalls>();
        const std::weak_ptr<ReportedCalls> last = delegate;
        controller.delegate = delegate;
        delegate.reset();
        ASSERT_TRUE(last.expired()) << "the controller holds its delegate weakly";
        act(controller);
        EXPECT_EQ(controller.content(), StoragePopoverViewController(HostSystem::macOS).content());
    }
}

TEST(StoragePopoverViewController, OnLinuxItMentionsThePanelAndExplainsTheFigures) {
    const PopoverContent onMac = StoragePopoverViewController(HostSystem::macOS).content();
    EXPECT_EQ(onMac.usedTooltip + onMac.availableTooltip, "");
    StoragePopoverViewController controller(HostSystem::linuxDesktop);
    controller.updateLoginItemStatus(true);
    controller.updateBarStyleStatus(BarStyle::macOSSegments);
    controller.updateSegmentSizingStatus(SegmentSizing::equal);
    const PopoverContent& content = controller.content();
    EXPECT_EQ(content.titleLabel.text, "File System");
    EXPECT_EQ(content.detailLabel.text,
              "Each category color gets equal width. Total used and available space stay live.");
    EXPECT_EQ(content.showPercentageButton.title, "Show % Used in Panel");
    EXPECT_EQ(content.launchAtLoginButton.tooltip, "Starts Ombrel silently in the panel when you log in.");
    EXPECT_EQ(content.segmentSizingPopUp.tooltip,
              "Use equal-width colors or category proportions that were once measured.");
    EXPECT_NE(content.usedTooltip, "");
    EXPECT_NE(content.availableTooltip, "");
}

} // namespace

} // namespace vantry
