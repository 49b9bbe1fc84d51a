#include "shell/qt/QtShell.h"

#include "shell/qt/ContextMenuRenderer.h"
#include "shell/qt/OmbrelStyle.h"

#include <QApplication>
#include <QCursor>

namespace vantry {

QtShell::QtShell() {
    QApplication::setStyle(new OmbrelStyle(appearance_)); // the application's from here on
    popover_ = std::make_unique<PopoverWindow>(appearance_);
    contextMenu_.setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu); // it has no window that it belongs to
    connect(&tracker_, &TrayTracker::changed, this, &QtShell::placeStatusItem);
    connect(&trayMenu_, &QMenu::aboutToShow, this, &QtShell::renderTrayMenu);
}

QtShell::~QtShell() = default;

void QtShell::setDelegate(std::weak_ptr<AppDelegate> delegate) {
    delegate_ = std::move(delegate);
    if (const auto target = delegate_.lock())
        popover_->setController(std::shared_ptr<StoragePopoverViewController>(target, &target->popoverController()));
}

void QtShell::becomeAccessory() {
    QApplication::setQuitOnLastWindowClosed(false);
    accessory_ = true;
}

bool QtShell::statusItemHasButton() const { return tray_ || strip_; }

void QtShell::showStatusItem(const StatusItemContent& content) {
    statusItem_ = content;
    if (!tray_ && !strip_)
        placeStatusItem();
    else if (tray_)
        tray_->setContent(content);
    else
        strip_->setContent(content);
}

// Into the tray that there is now, else into the strip.
void QtShell::placeStatusItem() {
    if (!accessory_)
        return;
    tray_.reset();
    strip_.reset();
    if (const TrayKind kind = tracker_.kind(); kind != TrayKind::none) {
        renderTrayMenu();
        tray_ = std::make_unique<TrayItem>(
            kind, appearance_, [this](MouseEvent event) { pressed(event); }, trayMenu_);
        tray_->setContent(statusItem_);
    } else {
        strip_ = std::make_unique<StripWindow>(
            appearance_, [this] { return closesPopover(); }, [this](MouseEvent event) { pressed(event); });
        strip_->setContent(statusItem_);
        strip_->show();
    }
}

void QtShell::renderPopover(const PopoverContent& content) {
    popover_->render(content);
    renderTrayMenu(); // some hosts show the menu as they last heard of it
}

void QtShell::openPopover() { popover_->openAt(statusItemGeometry()); }

void QtShell::closePopover() { popover_->close(); }

bool QtShell::popoverIsShown() const { return popover_->isVisible(); }

void QtShell::popUpContextMenu(const ContextMenuContent& content) {
    renderContextMenu(contextMenu_, content, [this](const MenuItemContent& item) { chosen(item); });
    contextMenu_.popup(QCursor::pos());
}

CleanupWindow& QtShell::cleanupWindow() {
    if (!cleanupWindow_) {
        const auto report = [this](auto action) {
            return [this, action](auto&&... arguments) {
                const auto target = delegate_.lock();
                if (const auto controller = target ? target->cleanupWindowController() : nullptr)
                    (controller.get()->*action)(arguments...);
            };
        };
        using Controller = CleanupWindowController;
        cleanupWindow_ = std::make_unique<CleanupWindow>(
            appearance_,
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

void QtShell::showCleanupWindow() { cleanupWindow().showInFront(); }

bool QtShell::cleanupWindowIsShown() const { return cleanupWindow_ && cleanupWindow_->isVisible(); }

void QtShell::renderCleanupWindow(const CleanupWindowContent& content) { cleanupWindow().render(content); }

void QtShell::scrollCleanupResultsToTop() { cleanupWindow().scrollResultsToTop(); }

void QtShell::ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) {
    cleanupWindow().ask(alert, std::move(answered));
}

void QtShell::terminate() { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); }

void QtShell::renderTrayMenu() {
    if (const auto target = delegate_.lock(); target && tracker_.kind() == TrayKind::statusNotifier)
        renderContextMenu(trayMenu_, target->contextMenu(), [this](const MenuItemContent& item) { chosen(item); });
}

bool QtShell::closesPopover() {
    if (!popover_->isVisible())
        return popover_->closedByItselfJustNow();
    popover_->close();
    return true;
}

void QtShell::pressed(MouseEvent event) {
    if (event == MouseEvent::leftMouseUp && popover_->closedByItselfJustNow())
        return;
    if (const auto target = delegate_.lock())
        target->statusItemPressed(event);
}

void QtShell::chosen(const MenuItemContent& item) {
    if (const auto target = delegate_.lock())
        target->performMenuItem(item);
}

QRect QtShell::statusItemGeometry() const {
    const QRect item = strip_ ? strip_->itemGeometry() : tray_ ? tray_->geometry() : QRect();
    return item.isValid() ? item : QRect(QCursor::pos(), QSize(1, 1));
}

} // namespace vantry
