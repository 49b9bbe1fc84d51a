#pragma once

#include "app/CallIfAlive.h"
#include "app/PopoverContent.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantry {

/// Receives what the popover's controls report. Main thread.
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

/// The popover's state. It owns no setting: every control reports to the delegate, which stores the choice, calls the
/// update operations and renders `content()` again. Main thread.
class StoragePopoverViewController {
public:
    explicit StoragePopoverViewController(HostSystem system) : state_{.system = system} {}

    std::weak_ptr<StoragePopoverDelegate> delegate;

    [[nodiscard]] PopoverContent content() const { return popoverContent(state_); }

    void update(const std::optional<StorageSnapshot>& snapshot);
    void updateLoginItemStatus(bool enabled) { state_.launchesAtLogin = enabled; }
    void updatePercentageStatus(bool enabled) { state_.showsUsedPercentage = enabled; }
    void updateBarStyleStatus(BarStyle style) {
        state_.barStyle = style;
        updateDetailText();
    }
    void updateSegmentSizingStatus(SegmentSizing sizing) {
        state_.segmentSizing = sizing;
        updateDetailText();
    }
    void updateThemeColors(std::vector<Rgba> colors) { state_.themeColors = std::move(colors); }
    void updateDetailText() { state_.explainsBarStyle = true; }
    /// Shows `message`; without one the label is empty and hidden.
    void showError(const std::optional<std::string>& message) { state_.error = message; }

    // What the controls do. Each does nothing when the delegate is gone.
    void refreshPressed() { callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedRefresh); }
    void settingsPressed() { callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedSettings); }
    void cleanupPressed() { callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedCleanup); }
    void quitPressed() { callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedQuit); }
    void loginItemChanged(bool isOn) {
        callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedLoginItemChange, isOn);
    }
    void percentageDisplayChanged(bool isOn) {
        callIfAlive(delegate, &StoragePopoverDelegate::storagePopoverRequestedPercentageChange, isOn);
    }
    /// `selectedIndex` is the index in the pop-up; absent when no item is selected.
    void barStyleChanged(std::optional<std::size_t> selectedIndex);
    void segmentSizingChanged(std::optional<std::size_t> selectedIndex);

private:
    PopoverState state_;
};

} // namespace vantry
