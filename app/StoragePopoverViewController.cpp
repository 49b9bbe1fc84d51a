#include "app/StoragePopoverViewController.h"

#include "platform/TextFormat.h"

#include <utility>

namespace vantry {

namespace {

constexpr const char* noFigure = "—";

std::string bytesText(std::int64_t bytes) { return byteCountText(bytes, ByteUnits::gigabytesAndTerabytes); }

// The rows of a choice stand in the order of its enumeration, so a case's position is its index.
template <class Rows>
PopUpContent choicePopUp(const Rows& rows, std::string tooltip) {
    PopUpContent popUp{.tooltip = std::move(tooltip)};
    for (const auto& row : rows)
        popUp.items.emplace_back(row.displayName);
    return popUp;
}

template <class Case>
std::size_t indexOf(Case value) {
    return static_cast<std::size_t>(value);
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

} // namespace

StoragePopoverViewController::StoragePopoverViewController() {
    content_.barStylePopUp =
        choicePopUp(allBarStyles, "Choose Rainbow, macOS Storage Colors, Vivid Theme, or the active wallpaper.");
    content_.segmentSizingPopUp = choicePopUp(
        allSegmentSizings, "Use equal-width colors or the latest verified macOS Storage category proportions.");
}

void StoragePopoverViewController::update(const std::optional<StorageSnapshot>& snapshot) {
    content_.barView.snapshot = snapshot;
    if (!snapshot) {
        content_.summaryLabel.text = "Loading storage…";
        content_.usedValueLabel.text = noFigure;
        content_.availableValueLabel.text = noFigure;
        content_.updateLabel.text.clear();
        return;
    }
    const std::string used = bytesText(snapshot->usedBytes());
    content_.titleLabel.text = snapshot->volumeName;
    content_.summaryLabel.text = used + " of " + bytesText(snapshot->totalBytes) + " used";
    content_.usedValueLabel.text = used + "  ·  " + percentText(snapshot->usedFraction()).value_or(noFigure);
    content_.availableValueLabel.text = bytesText(snapshot->availableBytes);
    content_.updateLabel.text = "Updated " + shortTimeText(snapshot->updatedAt);
    showError(std::nullopt);
}

void StoragePopoverViewController::updateLoginItemStatus(bool enabled) {
    content_.launchAtLoginButton.checked = enabled;
    content_.launchAtLoginButton.tooltip = "Starts Ombrel silently in the menu bar when you log in.";
}

void StoragePopoverViewController::updatePercentageStatus(bool enabled) {
    content_.showPercentageButton.checked = enabled;
}

void StoragePopoverViewController::updateBarStyleStatus(BarStyle style) {
    const bool hasSegments = style == BarStyle::macOSSegments;
    content_.barView.barStyle = style;
    content_.usedSwatchView.barStyle = style;
    content_.barStylePopUp.selectedIndex = indexOf(style);
    content_.segmentSizingPopUp.enabled = hasSegments;
    content_.segmentSizingLabel.color = hasSegments ? SystemColor::label : SystemColor::disabledControlText;
    updateDetailText();
}

void StoragePopoverViewController::updateSegmentSizingStatus(SegmentSizing sizing) {
    content_.barView.segmentSizing = sizing;
    content_.usedSwatchView.segmentSizing = sizing;
    content_.segmentSizingPopUp.selectedIndex = indexOf(sizing);
    updateDetailText();
}

void StoragePopoverViewController::updateThemeColors(std::vector<Rgba> colors) {
    content_.usedSwatchView.themeColors = colors;
    content_.barView.themeColors = std::move(colors);
}

void StoragePopoverViewController::updateDetailText() {
    content_.detailLabel.text = detailText(content_.barView.barStyle, content_.barView.segmentSizing);
}

void StoragePopoverViewController::showError(const std::optional<std::string>& message) {
    content_.errorLabel.text = message.value_or("");
    content_.errorLabel.hidden = !message;
}

void StoragePopoverViewController::refreshPressed() {
    if (const auto target = delegate.lock())
        target->storagePopoverRequestedRefresh();
}

void StoragePopoverViewController::settingsPressed() {
    if (const auto target = delegate.lock())
        target->storagePopoverRequestedSettings();
}

void StoragePopoverViewController::cleanupPressed() {
    if (const auto target = delegate.lock())
        target->storagePopoverRequestedCleanup();
}

void StoragePopoverViewController::quitPressed() {
    if (const auto target = delegate.lock())
        target->storagePopoverRequestedQuit();
}

void StoragePopoverViewController::loginItemChanged(bool isOn) {
    if (const auto target = delegate.lock())
        target->storagePopoverRequestedLoginItemChange(isOn);
}

void StoragePopoverViewController::percentageDisplayChanged(bool isOn) {
    if (const auto target = delegate.lock())
        target->storagePopoverRequestedPercentageChange(isOn);
}

void StoragePopoverViewController::barStyleChanged(std::optional<std::size_t> selectedIndex) {
    if (const auto target = delegate.lock(); target && selectedIndex && *selectedIndex < allBarStyles.size())
        target->storagePopoverRequestedBarStyleChange(allBarStyles[*selectedIndex].value);
}

void StoragePopoverViewController::segmentSizingChanged(std::optional<std::size_t> selectedIndex) {
    if (const auto target = delegate.lock(); target && selectedIndex && *selectedIndex < allSegmentSizings.size())
        target->storagePopoverRequestedSegmentSizingChange(allSegmentSizings[*selectedIndex].value);
}

} // namespace vantry
