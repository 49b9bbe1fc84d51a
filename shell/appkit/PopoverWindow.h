#pragma once

#include "app/StoragePopoverViewController.h"

#include <memory>

@class NSPopover, NSView, OmbrelPopoverViewController;

namespace vantry {

/// The storage popover. It closes by itself on a click outside and on Escape. Shows `PopoverContent` and reports to its
/// controller.
class PopoverWindow {
public:
    PopoverWindow();

    void setController(std::weak_ptr<StoragePopoverViewController> controller);
    void render(const PopoverContent& content);
    /// Shows the popover below `button`, or where there is room, and gives it the keyboard.
    void openAt(NSView* button);
    void close();
    [[nodiscard]] bool isVisible() const;

private:
    OmbrelPopoverViewController* view_;
    NSPopover* popover_;
};

} // namespace vantry
