#include "app/PopoverContent.h"

#include "platform/TextFormat.h"

namespace vantry {

namespace {

constexpr const char* noFigure = "—";

std::string bytesText(std::int64_t bytes) { return byteCountText(bytes, ByteUnits::gigabytesAndTerabytes); }

// A choice's rows are in the order of its enumeration, so the index of a row is the value of its case.
template <class Rows, class Case>
void showChoice(PopUpContent& popUp, const Rows& rows, std::optional<Case> selected) {
    for (const auto& row : rows)
        popUp.items.emplace_back(row.displayName);
    popUp.selectedIndex = selected.transform([](Case value) { return static_cast<std::size_t>(value); });
}

const char* detailText(BarStyle style, SegmentSizing sizing) {
    switch (style) {
    case BarStyle::storageGradient: return "The color strip shows total used space with the current Ombrel palette.";
    case BarStyle::macOSSegments:
        return sizing == SegmentSizing::equal
                   ? "Each macOS category color gets equal width. Total used and available space stay live."
                   : "Widths use the latest verified Storage Settings category totals; total disk usage stays live.";
    case BarStyle::vividTheme:
        return "Keeps the fixed blue, purple, pink, red, and orange colors from the previous Current Theme.";
    case BarStyle::currentTheme:
        return "Samples the wallpaper actually rendering on the desktop and adds a soft inner glow.";
    }
    return "";
}

void showFigures(PopoverContent& content, const StorageSnapshot& snapshot) {
    const std::string used = bytesText(snapshot.usedBytes());
    content.summaryLabel.text = used + " of " + bytesText(snapshot.totalBytes) + " used";
    content.usedValueLabel.text = used + "  ·  " + percentText(snapshot.usedFraction()).value_or(noFigure);
    content.availableValueLabel.text = bytesText(snapshot.availableBytes);
    content.updateLabel.text = "Updated " + shortTimeText(snapshot.updatedAt);
}

void showChoices(PopoverContent& content, const PopoverState& state) {
    content.launchAtLoginButton.checked = state.launchesAtLogin.value_or(false);
    if (state.launchesAtLogin)
        content.launchAtLoginButton.tooltip = "Starts Ombrel silently in the menu bar when you log in.";
    content.showPercentageButton.checked = state.showsUsedPercentage;
    showChoice(content.barStylePopUp, allBarStyles, state.barStyle);
    showChoice(content.segmentSizingPopUp, allSegmentSizings, state.segmentSizing);
    if (state.barStyle && state.barStyle != BarStyle::macOSSegments) {
        content.segmentSizingPopUp.enabled = false;
        content.segmentSizingLabel.color = SystemColor::disabledControlText;
    }
}

// The bar and the swatch of the used space have the same properties.
template <class View>
void color(View& view, const PopoverState& state) {
    view.barStyle = state.barStyle.value_or(view.barStyle);
    view.segmentSizing = state.segmentSizing.value_or(view.segmentSizing);
    view.themeColors = state.themeColors.value_or(view.themeColors);
}

void useWordsOf(HostSystem system, PopoverContent& content) {
    for (auto* text : {&content.titleLabel.text, &content.detailLabel.text, &content.showPercentageButton.title,
                       &content.segmentSizingPopUp.tooltip, &content.launchAtLoginButton.tooltip})
        *text = inWordsOf(system, *text);
    if (system == HostSystem::linuxDesktop) {
        content.usedTooltip = "What files take up; what the file system keeps for the administrator is not counted.";
        content.availableTooltip = "What you can still fill, without what the file system keeps for the administrator.";
    }
}

} // namespace

PopoverContent popoverContent(const PopoverState& state) {
    PopoverContent content;
    color(content.barView, state);
    color(content.usedSwatchView, state);
    showChoices(content, state);
    if (state.explainsBarStyle)
        content.detailLabel.text = detailText(content.barView.barStyle, content.barView.segmentSizing);
    useWordsOf(state.system, content);
    content.barView.snapshot = state.snapshot;
    if (state.snapshot)
        showFigures(content, *state.snapshot);
    content.titleLabel.text = state.volumeName.value_or(content.titleLabel.text);
    content.errorLabel.text = state.error.value_or("");
    content.errorLabel.hidden = !state.error;
    return content;
}

} // namespace vantry
