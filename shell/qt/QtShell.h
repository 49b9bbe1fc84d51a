#pragma once

#include "app/AppDelegate.h"
#include "app/CallIfAlive.h"
#include "app/Shell.h"
#include "shell/qt/CleanupWindow.h"
#include "shell/qt/PopoverWindow.h"
#include "shell/qt/QtAppearance.h"
#include "shell/qt/StripWindow.h"
#include "shell/qt/TrayItem.h"
#include "shell/qt/TrayTracker.h"

#include <QMenu>
#include <QObject>
#include <memory>

namespace vantry {

/// The Qt Widgets front end. The status item is in the tray, or in a strip while there is no tray.
class QtShell : public QObject, public Shell {
    Q_OBJECT

public:
    QtShell();

    /// Gets all clicks and choices.
    void setDelegate(std::weak_ptr<AppDelegate> delegate);

    void becomeAccessory() override;
    [[nodiscard]] bool statusItemHasButton() const override { return tray_ || strip_; }
    void showStatusItem(const StatusItemContent& content) override;
    void renderPopover(const PopoverContent& content) override { popover_->render(content); }
    void openPopover() override { popover_->openAt(statusItemGeometry()); }
    void closePopover() override { popover_->close(); }
    [[nodiscard]] bool popoverIsShown() const override { return popover_->isVisible(); }
    void popUpContextMenu(const ContextMenuContent& content) override;
    [[nodiscard]] CleanupWindowShell& cleanupWindowShell() override;
    void terminate() override;

private:
    void placeStatusItem();
    [[nodiscard]] bool closesPopover();
    void pressed(MouseEvent event);
    [[nodiscard]] QRect statusItemGeometry() const;

    QtAppearance appearance_;
    TrayTracker tracker_;
    std::weak_ptr<AppDelegate> delegate_;
    const MenuItemHandler chosen_ = [this](const MenuItemContent& item) {
        callIfAlive(delegate_, &AppDelegate::performMenuItem, item);
    };
    StatusItemContent statusItem_;
    QMenu contextMenu_;
    std::unique_ptr<PopoverWindow> popover_;
    std::unique_ptr<CleanupWindow> cleanupWindow_; ///< created on first use
    std::unique_ptr<TrayItem> tray_;
    std::unique_ptr<StripWindow> strip_;
    bool accessory_ = false;
};

} // namespace vantry
