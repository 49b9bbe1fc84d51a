#include "shell/qt/SymbolPicture.h"

#include "shell/qt/QtConversions.h"

#include <QFile>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace vantry {

namespace {

using namespace std::string_view_literals;

// Glyphs are drawn into a square with sides of 22, with a pen and a brush of the wanted colour.
using Draw = void(QPainter&);

QPen line(const QPainter& painter, double width = 1.25) {
    return {painter.pen().color(), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void drawOutline(QPainter& painter, const QPainterPath& path, double width = 1.25) {
    painter.strokePath(path, line(painter, width));
}

void cutOut(QPainter& painter, const QPainterPath& path) {
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(path, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void drawCheckInCircle(QPainter& painter) {
    QPainterPath path;
    path.addEllipse(QPointF(11, 11), 8.4, 8.4);
    path.moveTo(7.2, 11.4);
    path.lineTo(9.9, 14.1);
    path.lineTo(15, 8.2);
    drawOutline(painter, path);
}

void drawLockInShield(QPainter& painter) {
    QPainterPath shield;
    shield.moveTo(11, 1.6);
    shield.cubicTo(13.4, 3.4, 16, 4.4, 18.9, 4.6);
    shield.lineTo(18.9, 10.4);
    shield.cubicTo(18.9, 15.2, 15.6, 18.6, 11, 20.6);
    shield.cubicTo(6.4, 18.6, 3.1, 15.2, 3.1, 10.4);
    shield.lineTo(3.1, 4.6);
    shield.cubicTo(6, 4.4, 8.6, 3.4, 11, 1.6);
    painter.fillPath(shield, painter.pen().color());
    QPainterPath body;
    body.addRoundedRect(QRectF(7.4, 10, 7.2, 5.6), 1.1, 1.1);
    cutOut(painter, body);
    QPainterPath shackle;
    shackle.moveTo(8.8, 10.4);
    shackle.lineTo(8.8, 8.6);
    shackle.arcTo(QRectF(8.8, 6.4, 4.4, 4.4), 180, -180);
    shackle.lineTo(13.2, 10.4);
    QPainterPathStroker stroker;
    stroker.setWidth(1.4);
    cutOut(painter, stroker.createStroke(shackle));
}

void drawWarning(QPainter& painter) {
    QPainterPath triangle;
    triangle.moveTo(11, 3.4);
    triangle.lineTo(19.6, 18.2);
    triangle.lineTo(2.4, 18.2);
    triangle.closeSubpath();
    painter.fillPath(triangle, painter.pen().color());
    drawOutline(painter, triangle, 2.4);
    QPainterPath mark;
    mark.addRoundedRect(QRectF(10.1, 7.6, 1.8, 6), 0.9, 0.9);
    mark.addEllipse(QPointF(11, 15.9), 1.15, 1.15);
    cutOut(painter, mark);
}

void drawEye(QPainter& painter) {
    QPainterPath lid;
    lid.moveTo(1.6, 11);
    lid.cubicTo(5.4, 3.6, 16.6, 3.6, 20.4, 11);
    lid.cubicTo(16.6, 18.4, 5.4, 18.4, 1.6, 11);
    painter.fillPath(lid, painter.pen().color());
    QPainterPath ring;
    ring.addEllipse(QPointF(11, 11), 4.1, 4.1);
    cutOut(painter, ring);
    QPainterPath pupil;
    pupil.addEllipse(QPointF(11, 11), 2.4, 2.4);
    painter.fillPath(pupil, painter.pen().color());
}

void drawHeartbeat(QPainter& painter) {
    QPainterPath path;
    path.addPolygon({{{1.5, 12}, {6, 12}, {8.2, 6}, {12.2, 17}, {14.6, 9.6}, {15.6, 12}, {20.5, 12}}});
    drawOutline(painter, path);
}

void drawSoundWave(QPainter& painter) {
    QPainterPath path;
    double x = 2.5;
    for (const double half : {1.5, 4.0, 2.5, 7.5, 5.0, 3.0, 1.5}) {
        path.moveTo(x, 11 - half);
        path.lineTo(x, 11 + half);
        x += 17.0 / 6;
    }
    drawOutline(painter, path);
}

void drawNeutral(QPainter& painter) {
    QPainterPath path;
    path.addRoundedRect(QRectF(3.5, 3.5, 15, 15), 4, 4);
    drawOutline(painter, path);
    QPainterPath dot;
    dot.addEllipse(QPointF(11, 11), 2, 2);
    painter.fillPath(dot, painter.pen().color());
}

struct Row {
    std::string_view symbol;
    /// Names in icon themes, the best one first; the ones of the naming specification are in every theme.
    std::array<const char*, 3> icons{};
    const char* badge = nullptr; ///< an icon in the lower right corner
    Draw* draw = nullptr;
};

constexpr std::array rows{
    Row{"app.dashed"sv, {"select-rectangular", "application-x-executable"}},
    Row{"archivebox"sv, {"package-x-generic", "application-x-archive"}},
    Row{"arrow.down.circle"sv, {"download", "folder-download", "go-down"}},
    Row{"arrow.down.circle.dotted"sv, {"download-later", "document-open-recent"}},
    Row{"camera.viewfinder"sv, {"camera-photo", "applets-screenshooter"}},
    Row{"checkmark.circle"sv, {}, nullptr, drawCheckInCircle},
    Row{"clock.arrow.circlepath"sv, {"backup", "document-open-recent"}},
    Row{"cube.transparent"sv, {"package", "computer"}},
    Row{"doc.badge.ellipsis"sv, {"document-open-recent", "text-x-generic"}},
    Row{"doc.on.doc"sv, {"edit-copy"}},
    Row{"doc.text"sv, {"text-x-generic"}},
    Row{"doc.text.magnifyingglass"sv, {"document-preview", "document-print-preview"}},
    Row{"envelope"sv, {"mail-message", "mail-unread"}},
    Row{"exclamationmark.triangle.fill"sv, {}, nullptr, drawWarning},
    Row{"externaldrive"sv, {"drive-harddisk"}},
    Row{"externaldrive.badge.timemachine"sv, {"smartphone", "phone"}, "view-history"},
    Row{"externaldrive.connected.to.line.below"sv, {"drive-removable-media-usb", "drive-removable-media"}},
    Row{"eye.fill"sv, {}, nullptr, drawEye},
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
    Row{"lock.shield.fill"sv, {}, nullptr, drawLockInShield},
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
    Row{"waveform"sv, {}, nullptr, drawSoundWave},
    Row{"waveform.path.ecg"sv, {}, nullptr, drawHeartbeat},
};

const Row* rowOfSymbol(std::string_view name) {
    const auto* row = std::ranges::find(rows, name, &Row::symbol);
    return row == rows.end() ? nullptr : row;
}

constexpr double glyphSide = 22;

// The themes' pictures for small sizes have fewer and thicker lines.
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

struct Found {
    QPixmap picture;
    SymbolSource source;
};

Found iconOf(const Row& row, int side, double scale) {
    for (const char* name : row.icons)
        if (name)
            if (QPixmap picture = pictureFromBreeze(name, side, scale); !picture.isNull())
                return {std::move(picture), SymbolSource::breeze};
    for (const char* name : row.icons)
        if (name)
            if (QPixmap picture = pictureFromTheme(name, side, scale); !picture.isNull())
                return {std::move(picture), SymbolSource::theme};
    return {{}, SymbolSource::neutral};
}

QPixmap emptyPicture(int side, double scale) {
    const int pixels = static_cast<int>(std::ceil(side * scale));
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    picture.setDevicePixelRatio(scale);
    return picture;
}

QPixmap glyph(Draw& draw, int side, double scale) {
    QPixmap picture = emptyPicture(side, scale);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / glyphSide, side / glyphSide);
    painter.setPen(Qt::black);
    draw(painter);
    return picture;
}

// In the middle: a theme may have no icon as large as was asked for.
QPixmap centred(const QPixmap& icon, int side, double scale) {
    QPixmap picture = emptyPicture(side, scale);
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

// In no colour yet.
Found shapeOf(std::string_view name, int side, double scale) {
    const Row* row = rowOfSymbol(name);
    if (row && row->draw)
        return {glyph(*row->draw, side, scale), SymbolSource::drawn};
    Found found = row ? iconOf(*row, side, scale) : Found{{}, SymbolSource::neutral};
    if (found.picture.isNull())
        return {glyph(drawNeutral, side, scale), SymbolSource::neutral};
    found.picture = centred(found.picture, side, scale);
    if (row->badge)
        if (const QPixmap badge = pictureFromBreeze(row->badge, badgeIconSide, scale); !badge.isNull())
            addBadge(found.picture, badge, side);
    return found;
}

QPixmap pictureOf(std::string_view name, int side, const QColor& color, double scale) {
    QPixmap picture = shapeOf(name, side, scale).picture;
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRect(0, 0, side, side), color);
    return picture;
}

} // namespace

SymbolSource symbolSource(std::string_view name) { return shapeOf(name, static_cast<int>(glyphSide), 1).source; }

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
