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

AppKitShell::~AppKitShell() = default;

void AppKitShell::setDelegate(std::weak_ptr<AppDelegate> delegate) {
    *delegate_ = std::move(delegate);
    if (const auto target = delegate_->lock())
        popover_.setController(std::shared_ptr<StoragePopoverViewController>(target, &target->popoverController()));
}

void AppKitShell::becomeAccessory() {
    [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

bool AppKitShell::statusItemHasButton() const { return statusItem_.button() != nil; }

void AppKitShell::showStatusItem(const StatusItemContent& content) { statusItem_.setContent(content); }

void AppKitShell::renderPopover(const PopoverContent& content) { popover_.render(content); }

void AppKitShell::openPopover() {
    if (NSView* button = statusItem_.button())
        popover_.openAt(button);
}

void AppKitShell::closePopover() { popover_.close(); }

bool AppKitShell::popoverIsShown() const { return popover_.isVisible(); }

void AppKitShell::popUpContextMenu(const ContextMenuContent& content) {
    NSEvent* event = [NSApplication sharedApplication].currentEvent;
    NSView* button = statusItem_.button();
    if (!event || !button)
        return;
    NSMenu* menu = makeContextMenu(content, menuTarget_);
    if (event.type == NSEventTypeRightMouseUp)
        [NSMenu popUpContextMenu:menu withEvent:event forView:button];
    else // the click was seen by a monitor, and the event is an older one
        [menu popUpMenuPositioningItem:nil
                            atLocation:NSMakePoint(0, button.flipped ? NSMaxY(button.bounds) : 0)
                                inView:button];
}

CleanupWindow& AppKitShell::cleanupWindow() {
    if (!cleanupWindow_) {
        const auto report = [this](auto action) {
            return [delegate = delegate_, action](auto&&... arguments) {
                const auto target = delegate->lock();
                if (const auto controller = target ? target->cleanupWindowController() : nullptr)
                    (controller.get()->*action)(arguments...);
            };
        };
        using Controller = CleanupWindowController;
        cleanupWindow_ = std::make_unique<CleanupWindow>(
            CleanupWindowActions{report(&Controller::scanPressed),
                                 report(&Controller::modeChanged),
                                 report(&Controller::selectSuggestedPressed),
                                 report(&Controller::trashPressed),
                                 report(&Controller::cancelPressed),
                                 report(&Controller::windowClosed),
                                 {report(&Controller::candidateSelectionChanged), report(&Controller::revealPressed),
                                  report(&Controller::avenueActionPressed)}});
    }
    return *cleanupWindow_;
}

void AppKitShell::showCleanupWindow() { cleanupWindow().showInFront(); }

bool AppKitShell::cleanupWindowIsShown() const { return cleanupWindow_ && cleanupWindow_->isVisible(); }

void AppKitShell::renderCleanupWindow(const CleanupWindowContent& content) { cleanupWindow().render(content); }

void AppKitShell::scrollCleanupResultsToTop() { cleanupWindow().scrollResultsToTop(); }

void AppKitShell::ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) {
    cleanupWindow().ask(alert, std::move(answered));
}

// In a later turn, because it never returns.
void AppKitShell::terminate() {
    dispatch_async(dispatch_get_main_queue(), ^{
        [[NSApplication sharedApplication] terminate:nil];
    });
}

} // namespace vantry
