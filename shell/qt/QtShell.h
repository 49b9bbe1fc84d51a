#pragma once

#include "app/AppDelegate.h"
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

/// The front end on Qt Widgets: the item in the tray, or in a strip of its own while there is no tray, with the popover
/// and the menu.
class QtShell : public QObject, public Shell {
    Q_OBJECT

public:
    QtShell();
    ~QtShell() override;

    /// Whom clicks and choices go to.
    void setDelegate(std::weak_ptr<AppDelegate> delegate);

    void becomeAccessory() override;
    [[nodiscard]] bool statusItemHasButton() const override;
    void showStatusItem(const StatusItemContent& content) override;
    void renderPopover(const PopoverContent& content) override;
    void openPopover() override;
    void closePopover() override;
    [[nodiscard]] bool popoverIsShown() const override;
    void popUpContextMenu(const ContextMenuContent& content) override;
    void showCleanupWindow() override;
    [[nodiscard]] bool cleanupWindowIsShown() const override;
    void renderCleanupWindow(const CleanupWindowContent& content) override;
    void scrollCleanupResultsToTop() override;
    void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) override;
    void terminate() override;

private:
    [[nodiscard]] CleanupWindow& cleanupWindow();
    void placeStatusItem();
    void renderTrayMenu();
    [[nodiscard]] bool closesPopover();
    void pressed(MouseEvent event);
    void chosen(const MenuItemContent& item);
    [[nodiscard]] QRect statusItemGeometry() const;

    QtAppearance appearance_;
    TrayTracker tracker_;
    std::weak_ptr<AppDelegate> delegate_;
    StatusItemContent statusItem_;
    QMenu trayMenu_;
    QMenu contextMenu_;
    std::unique_ptr<PopoverWindow> popover_;
    std::unique_ptr<CleanupWindow> cleanupWindow_; ///< null before it is first needed
    std::unique_ptr<TrayItem> tray_;
    std::unique_ptr<StripWindow> strip_;
    bool accessory_ = false;
};

} // namespace vantry
