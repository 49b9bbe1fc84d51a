#include "shell/qt/QtShell.h"

#include "shell/qt/OmbrelStyle.h"

#include <QApplication>
#include <QCursor>

namespace vantry {

QtShell::QtShell() {
    QApplication::setStyle(new OmbrelStyle(appearance_)); // the application owns it
    popover_ = std::make_unique<PopoverWindow>();
    contextMenu_.setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu); // it has no parent window
    connect(&tracker_, &TrayTracker::changed, this, &QtShell::placeStatusItem);
}

void QtShell::setDelegate(std::weak_ptr<AppDelegate> delegate) {
    delegate_ = std::move(delegate);
    if (const auto target = delegate_.lock())
        popover_->setController(std::shared_ptr<StoragePopoverViewController>(target, &target->popoverController()));
}

void QtShell::becomeAccessory() {
    QApplication::setQuitOnLastWindowClosed(false);
    accessory_ = true;
}

void QtShell::showStatusItem(const StatusItemContent& content) {
    statusItem_ = content;
    if (!tray_ && !strip_)
        placeStatusItem();
    else if (tray_)
        tray_->setContent(content);
    else
        strip_->setContent(content);
}

// In the current tray, or in the strip when there is none.
void QtShell::placeStatusItem() {
    if (!accessory_)
        return;
    tray_.reset();
    strip_.reset();
    if (const TrayKind kind = tracker_.kind(); kind != TrayKind::none) {
        tray_ = std::make_unique<TrayItem>(
            kind, appearance_,
            TrayActions{.pressed = [this](MouseEvent event) { pressed(event); },
                        .menuWillOpen = [this] { callIfAlive(delegate_, &AppDelegate::menuWillOpen); },
                        .chosen = chosen_});
        tray_->setContent(statusItem_);
    } else {
        strip_ = std::make_unique<StripWindow>([this] { return closesPopover(); },
                                               [this](MouseEvent event) { pressed(event); });
        strip_->setContent(statusItem_);
        strip_->show();
    }
}

void QtShell::popUpContextMenu(const ContextMenuContent& content) {
    renderContextMenu(contextMenu_, content, chosen_);
    contextMenu_.popup(QCursor::pos());
}

CleanupWindowShell& QtShell::cleanupWindowShell() {
    if (!cleanupWindow_)
        cleanupWindow_ = std::make_unique<CleanupWindow>(cleanupWindowActions(delegate_));
    return *cleanupWindow_;
}

void QtShell::terminate() { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); }

bool QtShell::closesPopover() {
    if (!popover_->isVisible())
        return popover_->closedByItselfJustNow();
    popover_->close();
    return true;
}

void QtShell::pressed(MouseEvent event) {
    if (event == MouseEvent::leftMouseUp && popover_->closedByItselfJustNow())
        return;
    callIfAlive(delegate_, &AppDelegate::statusItemPressed, event);
}

QRect QtShell::statusItemGeometry() const {
    const QRect item = strip_ ? strip_->itemGeometry() : tray_ ? tray_->geometry() : QRect();
    return item.isValid() ? item : QRect(QCursor::pos(), QSize(1, 1));
}

} // namespace vantry
