#pragma once

#include "app/PopoverContent.h"
#include "storage/StorageSnapshot.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// Whom the popover's controls report to. Main thread.
class StoragePopoverDelegate {
public:
    virtual ~StoragePopoverDelegate() = default;

    virtual void storagePopoverRequestedRefresh() = 0;
    virtual void storagePopoverRequestedSettings() = 0;
    virtual void storagePopoverRequestedCleanup() = 0;
    virtual void storagePopoverRequestedQuit() = 0;
    virtual void storagePopoverRequestedLoginItemChange(bool enabled) = 0;
    virtual void storagePopoverRequestedPercentageChange(bool enabled) = 0;
    virtual void storagePopoverRequestedBarStyleChange(BarStyle style) = 0;
    virtual void storagePopoverRequestedSegmentSizingChange(SegmentSizing sizing) = 0;
};

/// The popover's state. It owns no setting: every control reports to the delegate, which persists the choice and calls
/// the update operations back; after them the owner renders `content()` again. Main thread.
class StoragePopoverViewController {
public:
    StoragePopoverViewController();

    std::weak_ptr<StoragePopoverDelegate> delegate;

    [[nodiscard]] const PopoverContent& content() const { return content_; }

    void update(const std::optional<StorageSnapshot>& snapshot);
    void updateLoginItemStatus(bool enabled);
    void updatePercentageStatus(bool enabled);
    void updateBarStyleStatus(BarStyle style);
    void updateSegmentSizingStatus(SegmentSizing sizing);
    void updateThemeColors(std::vector<Rgba> colors);
    void updateDetailText();
    /// Shows `message`; without one the label is empty and hidden.
    void showError(const std::optional<std::string>& message);

    // What the controls do. Each does nothing when the delegate is gone.
    void refreshPressed();
    void settingsPressed();
    void cleanupPressed();
    void quitPressed();
    void loginItemChanged(bool isOn);
    void percentageDisplayChanged(bool isOn);
    /// `selectedIndex` counts the items of the pop-up; absent when none is selected.
    void barStyleChanged(std::optional<std::size_t> selectedIndex);
    void segmentSizingChanged(std::optional<std::size_t> selectedIndex);

private:
    PopoverContent content_;
};

} // namespace vantry
