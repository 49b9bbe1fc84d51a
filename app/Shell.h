#pragma once

#include "app/ContextMenu.h"
#include "app/PopoverContent.h"
#include "app/StatusItemContent.h"
#include "cleanup/window/CleanupWindowShell.h"

namespace vantry {

/// A front end: it draws the values it is given and forwards clicks to `AppDelegate`. Main thread.
class Shell {
public:
    virtual ~Shell() = default;

    /// No Dock icon, no main menu, no window that keeps the application in the foreground.
    virtual void becomeAccessory() = 0;

    /// Whether the status item has a button to draw into and to be clicked.
    [[nodiscard]] virtual bool statusItemHasButton() const = 0;
    virtual void showStatusItem(const StatusItemContent& content) = 0;

    virtual void renderPopover(const PopoverContent& content) = 0;
    /// Shows the popover at the status item, below it where there is room, and gives it the keyboard.
    virtual void openPopover() = 0;
    virtual void closePopover() = 0;
    [[nodiscard]] virtual bool popoverIsShown() const = 0;

    virtual void popUpContextMenu(const ContextMenuContent& content) = 0;

    /// The "Free Up Space" window, created by the first call.
    [[nodiscard]] virtual CleanupWindowShell& cleanupWindowShell() = 0;

    /// Ends the event loop soon.
    virtual void terminate() = 0;
};

} // namespace vantry
