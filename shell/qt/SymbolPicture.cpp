#include "shell/qt/SymbolPicture.h"

#include "shell/qt/QtConversions.h"

#include <QFile>
#include <QIcon>
#include <QPainter>
#include <QPixmapCache>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cmath>

namespace vantry {

namespace {

using namespace std::string_view_literals;

struct Row {
    std::string_view symbol;
    /// Names in icon themes, best first. Names of the freedesktop icon naming specification are in every theme.
    std::array<const char*, 3> icons{};
    const char* badge = nullptr; ///< an icon in the lower right corner
};

constexpr std::array rows{
    Row{"app.dashed"sv, {"select-rectangular", "application-x-executable"}},
    Row{"archivebox"sv, {"package-x-generic", "application-x-archive"}},
    Row{"arrow.down.circle"sv, {"download", "folder-download", "go-down"}},
    Row{"arrow.down.circle.dotted"sv, {"download-later", "document-open-recent"}},
    Row{"camera.viewfinder"sv, {"camera-photo", "applets-screenshooter"}},
    Row{"clock.arrow.circlepath"sv, {"backup", "document-open-recent"}},
    Row{"cube.transparent"sv, {"package", "computer"}},
    Row{"doc.badge.ellipsis"sv, {"document-open-recent", "text-x-generic"}},
    Row{"doc.on.doc"sv, {"edit-copy"}},
    Row{"doc.text"sv, {"text-x-generic"}},
    Row{"doc.text.magnifyingglass"sv, {"document-preview", "document-print-preview"}},
    Row{"envelope"sv, {"mail-message", "mail-unread"}},
    Row{"externaldrive"sv, {"drive-harddisk"}},
    Row{"externaldrive.badge.timemachine"sv, {"smartphone", "phone"}, "view-history"},
    Row{"externaldrive.connected.to.line.below"sv, {"drive-removable-media-usb", "drive-removable-media"}},
    Row{"film.stack"sv, {"video-x-generic"}},
    Row{"folder"sv, {"folder"}},
    Row{"folder.badge.gearshape"sv, {"folder"}, "run-build"},
    Row{"folder.badge.questionmark"sv, {"folder"}, "question"},
    Row{"gamecontroller"sv, {"input-gamepad", "input-gaming"}},
    Row{"gearshape.2"sv, {"text-x-makefile", "preferences-system", "emblem-system"}},
    Row{"globe"sv, {"set-language", "preferences-desktop-locale"}},
    Row{"hammer"sv, {"tools", "applications-engineering", "applications-development"}},
    Row{"icloud"sv, {"folder-cloud", "folder-remote"}},
    Row{"internaldrive"sv, {"server-database", "drive-harddisk-system"}},
    Row{"iphone.and.arrow.forward"sv, {"smartphone", "phone"}, "download"},
    Row{"iphone.gen3"sv, {"smartphone", "phone"}},
    Row{"macbook.and.iphone"sv, {"computer-laptop", "computer"}},
    Row{"magnifyingglass"sv, {"edit-find", "system-search"}},
    Row{"message"sv, {"dialog-messages", "user-available"}},
    Row{"person.2"sv, {"system-users"}},
    Row{"play.square.stack"sv, {"view-media-playlist", "applications-multimedia"}},
    Row{"puzzlepiece.extension"sv, {"plugins", "application-x-addon"}},
    Row{"safari"sv, {"map-globe", "web-browser"}},
    Row{"shippingbox"sv, {"draw-cuboid", "system-file-manager"}},
    Row{"shippingbox.and.arrow.backward"sv, {"application-x-apple-diskimage", "system-software-install"}},
    Row{"sparkles"sv, {"tools-wizard", "starred"}},
    Row{"square.grid.2x2"sv, {"view-list-icons", "view-grid", "view-app-grid"}},
    Row{"square.on.square"sv, {"window-duplicate", "window-restore"}},
    Row{"switch.2"sv, {"view-media-equalizer", "preferences-other"}},
    Row{"terminal"sv, {"dialog-scripts", "utilities-terminal"}},
    Row{"trash"sv, {"user-trash"}},
};

// Below this side, themes have simpler icons.
constexpr int smallSide = 18;
constexpr int badgeIconSide = 16;

QPixmap pictureOfIcon(const QIcon& icon, int side, double scale) {
    return icon.isNull() ? QPixmap() : icon.pixmap(QSize(side, side), scale);
}

QStringList iconFolders() {
    QStringList folders = QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QStringLiteral("icons"),
                                                    QStandardPaths::LocateDirectory);
    for (const QString& path : QIcon::themeSearchPaths())
        if (!folders.contains(path))
            folders.append(path);
    return folders;
}

QPixmap pictureFromBreeze(const char* name, int side, double scale) {
    static constexpr std::array contexts{"actions", "devices", "places", "mimetypes", "status"};
    for (const QString& path : iconFolders())
        for (const char* size : {side < smallSide ? "16" : "22", "22"})
            for (const char* context : contexts) {
                const QString file = QStringLiteral("%1/breeze/%2/%3/%4.svg")
                                         .arg(path, QLatin1String(context), QLatin1String(size), QLatin1String(name));
                if (!QFile::exists(file))
                    continue;
                if (QPixmap picture = pictureOfIcon(QIcon(file), side, scale); !picture.isNull())
                    return picture;
            }
    return {};
}

QPixmap pictureFromTheme(const char* name, int side, double scale) {
    const QString plain = QLatin1String(name);
    QPixmap picture = pictureOfIcon(QIcon::fromTheme(plain + QStringLiteral("-symbolic")), side, scale);
    return picture.isNull() ? pictureOfIcon(QIcon::fromTheme(plain), side, scale) : picture;
}

QPixmap iconOf(const Row& row, int side, double scale) {
    for (const auto pictureFrom : {pictureFromBreeze, pictureFromTheme})
        for (const char* name : row.icons)
            if (QPixmap picture = name ? pictureFrom(name, side, scale) : QPixmap(); !picture.isNull())
                return picture;
    return {};
}

// Drawn for Ombrel.
QPixmap ownPicture(std::string_view name, int side, double scale) {
    const QString file = QStringLiteral(":/ombrel/symbols/%1.svg").arg(qString(name));
    return QFile::exists(file) ? pictureOfIcon(QIcon(file), side, scale) : QPixmap();
}

// Centres the icon, because a theme may only have a smaller one than requested.
QPixmap centred(const QPixmap& icon, int side, double scale) {
    const int pixels = static_cast<int>(std::ceil(side * scale));
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    picture.setDevicePixelRatio(scale);
    const QSizeF size = icon.deviceIndependentSize();
    QPainter(&picture).drawPixmap(QPointF((side - size.width()) / 2, (side - size.height()) / 2), icon);
    return picture;
}

// In the lower right corner, with a gap around it.
void addBadge(QPixmap& picture, const QPixmap& badge, double side) {
    const double badgeSide = side * 0.54;
    const QRectF place(side - badgeSide, side - badgeSide, badgeSide, badgeSide);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.drawEllipse(place.center(), badgeSide * 0.6, badgeSide * 0.6);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawPixmap(place, badge, QRectF(badge.rect()));
}

QPixmap pictureOf(std::string_view name, int side, const QColor& color, double scale) {
    const auto* row = std::ranges::find(rows, name, &Row::symbol);
    const bool isListed = row != rows.end();
    const QPixmap icon = isListed ? iconOf(*row, side, scale) : ownPicture(name, side, scale);
    QPixmap picture = centred(icon.isNull() ? ownPicture("neutral", side, scale) : icon, side, scale);
    if (isListed && row->badge && !icon.isNull())
        if (const QPixmap badge = pictureFromBreeze(row->badge, badgeIconSide, scale); !badge.isNull())
            addBadge(picture, badge, side);
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRect(0, 0, side, side), color);
    return picture;
}

} // namespace

QPixmap symbolPicture(std::string_view name, int side, const QColor& color, double scale) {
    const QString key =
        QStringLiteral("ombrel-symbol/%1/%2/%3/%4")
            .arg(qString(name), QString::number(side), QString::number(color.rgba(), 16), QString::number(scale));
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = pictureOf(name, side, color, scale);
        QPixmapCache::insert(key, picture);
    }
    return picture;
}

void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, int side, const QColor& color) {
    const double scale = painter.device()->devicePixelRatioF();
    const QPointF corner(std::round((rect.left() + (rect.width() - side) / 2) * scale) / scale,
                         std::round((rect.top() + (rect.height() - side) / 2) * scale) / scale);
    painter.drawPixmap(corner, symbolPicture(name, side, color, scale));
}

} // namespace vantry
