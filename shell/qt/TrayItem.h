#pragma once

#include "app/AppDelegate.h"
#include "app/StatusItemContent.h"
#include "shell/qt/QtAppearance.h"
#include "shell/qt/TrayTracker.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <functional>

namespace vantry {

/// The bar as a picture that fits a tray's square slot, crisp at every size that trays ask for.
[[nodiscard]] QIcon trayIcon(const VantryView& view, Appearance appearance);

/// The item in a tray of one kind; made anew when the kind changes.
class TrayItem : public QObject {
    Q_OBJECT

public:
    /// `menu` is what a StatusNotifierItem host shows for the right click; an XEmbed tray tells the click instead.
    TrayItem(TrayKind kind, const QtAppearance& appearance, std::function<void(MouseEvent)> pressed, QMenu& menu);

    void setContent(const StatusItemContent& content);
    /// Where the item is on the screen; empty where the host does not tell.
    [[nodiscard]] QRect geometry() const { return icon_.geometry(); }

private:
    void showPicture();

    const QtAppearance& appearance_;
    StatusItemContent content_;
    QSystemTrayIcon icon_;
};

} // namespace vantry
