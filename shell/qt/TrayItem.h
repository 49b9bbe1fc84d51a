#pragma once

#include "app/AppDelegate.h"
#include "app/StatusItemContent.h"
#include "shell/qt/ContextMenuRenderer.h"
#include "shell/qt/QtAppearance.h"
#include "shell/qt/TrayTracker.h"

#include <QSystemTrayIcon>
#include <functional>

namespace vantry {

/// The bar as a square icon, in every size that trays request.
[[nodiscard]] QIcon trayIcon(const VantryView& view, Appearance appearance);

struct TrayActions {
    std::function<void(MouseEvent)> pressed;
    std::function<void()> menuWillOpen;
    MenuItemHandler chosen;
};

/// The item in a tray of one kind. A new one is created when the kind changes.
class TrayItem : public QObject {
    Q_OBJECT

public:
    /// A StatusNotifierItem host shows the content's menu for the right click; an XEmbed tray reports the click.
    TrayItem(TrayKind kind, const QtAppearance& appearance, TrayActions actions);

    void setContent(const StatusItemContent& content);
    /// The item's place on the screen; empty if the host does not report it.
    [[nodiscard]] QRect geometry() const { return icon_.geometry(); }

private:
    void showPicture();

    const QtAppearance& appearance_;
    const TrayActions actions_;
    StatusItemContent content_;
    QMenu menu_;
    QSystemTrayIcon icon_;
};

} // namespace vantry
