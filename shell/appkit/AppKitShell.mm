#include "shell/appkit/AppKitShell.h"

#include <AppKit/AppKit.h>
#include <dispatch/dispatch.h>
#include <utility>

namespace vantry {

AppKitShell::AppKitShell()
    : menuTarget_(makeMenuTarget([delegate = delegate_](const MenuItemContent& item) {
          if (const auto target = delegate->lock())
              target->performMenuItem(item);
      })),
      statusItem_([this](std::optional<MouseEvent> event) {
          const auto target = delegate_->lock();
          if (event == MouseEvent::leftMouseUp &&
              popover_.wasShownAtPress([NSApplication sharedApplication].currentEvent))
              popover_.close();
          else if (target)
              target->statusItemPressed(event);
      }) {}

void AppKitShell::setDelegate(std::weak_ptr<AppDelegate> delegate) {
    *delegate_ = std::move(delegate);
    if (const auto target = delegate_->lock())
        popover_.setController(std::shared_ptr<StoragePopoverViewController>(target, &target->popoverController()));
}

void AppKitShell::becomeAccessory() {
    [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void AppKitShell::openPopover() {
    if (NSView* button = statusItem_.button())
        popover_.openAt(button);
}

void AppKitShell::popUpContextMenu(const ContextMenuContent& content) {
    NSEvent* event = [NSApplication sharedApplication].currentEvent;
    NSView* button = statusItem_.button();
    if (!event || !button)
        return;
    NSMenu* menu = makeContextMenu(content, menuTarget_);
    if (event.type == NSEventTypeRightMouseUp)
        [NSMenu popUpContextMenu:menu withEvent:event forView:button];
    else // a monitor saw the click, and the current event is an older one
        [menu popUpMenuPositioningItem:nil
                            atLocation:NSMakePoint(0, button.flipped ? NSMaxY(button.bounds) : 0)
                                inView:button];
}

CleanupWindowShell& AppKitShell::cleanupWindowShell() {
    if (!cleanupWindow_)
        cleanupWindow_ = std::make_unique<CleanupWindow>(cleanupWindowActions(*delegate_));
    return *cleanupWindow_;
}

// In a later turn, because `terminate:` does not return.
void AppKitShell::terminate() {
    dispatch_async(dispatch_get_main_queue(), ^{
        [[NSApplication sharedApplication] terminate:nil];
    });
}

} // namespace vantry
