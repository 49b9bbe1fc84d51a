#pragma once

#include "app/StoragePopoverViewController.h"

#include <memory>
#include <optional>

@class NSEvent, NSPopover, NSView, NSWindow, OmbrelPopoverViewController;

namespace vantry {

class MouseMonitor;

/// The storage popover. It closes by itself on a click outside, in another application as well, on Escape and on ⌘W.
/// Shows `PopoverContent` and reports to its controller.
class PopoverWindow {
public:
    PopoverWindow();
    PopoverWindow(const PopoverWindow&) = delete;
    PopoverWindow& operator=(const PopoverWindow&) = delete;
    ~PopoverWindow();

    void setController(std::weak_ptr<StoragePopoverViewController> controller);
    void render(const PopoverContent& content);
    /// Shows the popover below `button`, or where there is room, and gives it the keyboard. Where the system does not
    /// show the button, beside the notch for instance, at the top of the pointer's screen.
    void openAt(NSView* button);
    void close();
    [[nodiscard]] bool isVisible() const;
    /// Whether the press of which `release` is the end began on the button while the popover was shown. That press is
    /// one that closes it, however long it lasts.
    [[nodiscard]] bool wasShownAtPress(NSEvent* release) const;

private:
    void mousePressed(NSEvent* event, NSView* button);
    [[nodiscard]] NSView* placeAtPointer();

    std::unique_ptr<MouseMonitor> monitor_; ///< while the popover is shown
    NSWindow* place_;                       ///< an invisible one that the popover points to; nil unless needed
    std::optional<long> press_;             ///< the number of the last press on the button while the popover was shown
    OmbrelPopoverViewController* view_;
    NSPopover* popover_;
};

} // namespace vantry
