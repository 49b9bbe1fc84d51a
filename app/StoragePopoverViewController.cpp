#include "app/StoragePopoverViewController.h"

namespace vantry {

void StoragePopoverViewController::update(const std::optional<StorageSnapshot>& snapshot) {
    state_.snapshot = snapshot;
    if (!snapshot)
        return;
    state_.volumeName = snapshot->volumeName;
    showError(std::nullopt);
}

void StoragePopoverViewController::barStyleChanged(std::optional<std::size_t> selectedIndex) {
    if (selectedIndex && *selectedIndex < allBarStyles.size())
        callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedBarStyleChange,
                    allBarStyles[*selectedIndex].value);
}

void StoragePopoverViewController::segmentSizingChanged(std::optional<std::size_t> selectedIndex) {
    if (selectedIndex && *selectedIndex < allSegmentSizings.size())
        callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedSegmentSizingChange,
                    allSegmentSizings[*selectedIndex].value);
}

} // namespace vantry
