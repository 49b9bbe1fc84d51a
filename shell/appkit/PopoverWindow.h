#pragma once

#include "app/StoragePopoverViewController.h"

#include <AppKit/AppKit.h>
#include <memory>
#include <optional>

@class OmbrelPopoverViewController;

namespace vantry {

class MouseMonitor;

/// The storage popover. It closes on a click outside, also in another application, on Escape and on ⌘W. Shows
/// `PopoverContent` and reports to its controller.
class PopoverWindow {
public:
    PopoverWindow();
    PopoverWindow(const PopoverWindow&) = delete;
    PopoverWindow& operator=(const PopoverWindow&) = delete;
    ~PopoverWindow();

    void setController(std::weak_ptr<StoragePopoverViewController> controller);
    void render(const PopoverContent& content);
    /// Shows the popover below `button` and gives it the focus. If the system hides the button, beside the notch for
    /// instance, it opens at the top of the pointer's screen.
    void openAt(NSView* button);
    void close() { [popover_ performClose:nil]; }
    [[nodiscard]] bool isVisible() const { return popover_.shown; }
    /// Whether the click that ends with `release` began on the button while the popover was shown. Such a click closes
    /// the popover, however long it lasts.
    [[nodiscard]] bool wasShownAtPress(NSEvent* release) const;

private:
    void mousePressed(NSEvent* event, NSView* button);
    [[nodiscard]] NSView* placeAtPointer();

    std::unique_ptr<MouseMonitor> monitor_; ///< while the popover is shown
    NSWindow* place_;           ///< an invisible window that the popover points to when the button is hidden
    std::optional<long> press_; ///< the number of the last press on the button while the popover was shown
    OmbrelPopoverViewController* view_;
    NSPopover* popover_;
};

} // namespace vantry
