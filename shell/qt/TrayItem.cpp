#include "shell/qt/TrayItem.h"

#include "rendering/TrayBarView.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace vantry {

QIcon trayIcon(const VantryView& view, Appearance appearance) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        QtCanvas canvas(painter, appearance);
        TrayBarView::draw(canvas, view, side, appearance);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

TrayItem::TrayItem(TrayKind kind, const QtAppearance& appearance, TrayActions actions)
    : appearance_(appearance),
      actions_(std::move(actions)) {
    connect(&icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger ||
            reason == QSystemTrayIcon::DoubleClick) // the second of two quick clicks
            actions_.pressed(MouseEvent::leftMouseUp);
        else if (reason == QSystemTrayIcon::Context)
            actions_.pressed(MouseEvent::rightMouseUp);
    });
    connect(&appearance_, &QtAppearance::changed, this, &TrayItem::showPicture);
    if (kind == TrayKind::statusNotifier) {
        connect(&menu_, &QMenu::aboutToShow, this, [this] { actions_.menuWillOpen(); });
        icon_.setContextMenu(&menu_);
    }
}

void TrayItem::setContent(const StatusItemContent& content) {
    const bool pictureChanged = icon_.icon().isNull() || !(content.view == content_.view);
    content_ = content;
    if (icon_.contextMenu())
        renderContextMenu(menu_, content.menu, actions_.chosen);
    icon_.setToolTip(qString(content.tooltip));
    if (pictureChanged)
        showPicture();
    icon_.show();
}

void TrayItem::showPicture() { icon_.setIcon(trayIcon(content_.view, appearance_.current())); }

} // namespace vantry
