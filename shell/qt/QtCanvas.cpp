#include "shell/qt/QtCanvas.h"

#include "platform/linux/SystemColors.h"
#include "shell/qt/FigureText.h"
#include "shell/qt/QtConversions.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainterPath>

namespace vantry {

namespace {

QPainterPath pathOf(const Shape& shape) {
    QPainterPath path;
    if (const auto* rect = std::get_if<Rect>(&shape))
        path.addRect(qRect(*rect));
    else if (const auto* rounded = std::get_if<RoundedRect>(&shape))
        path.addRoundedRect(qRect(rounded->rect), rounded->radius, rounded->radius);
    else
        path.addEllipse(qRect(std::get<Ellipse>(shape).rect));
    return path;
}

QFont::Weight qWeight(FontWeight weight) {
    switch (weight) {
    case FontWeight::regular: return QFont::Normal;
    case FontWeight::medium: return QFont::Medium;
    case FontWeight::semibold: return QFont::DemiBold;
    case FontWeight::bold: return QFont::Bold;
    }
    return QFont::Normal;
}

} // namespace

QColor qColor(const Color& color, Appearance appearance) {
    Rgba value;
    if (const auto* dynamic = std::get_if<DynamicColor>(&color)) {
        value = resolvedSystemColor(dynamic->role, appearance);
        value.alpha *= dynamic->alpha;
    } else {
        value = std::get<Rgba>(color);
    }
    return QColor::fromRgbF(static_cast<float>(value.red), static_cast<float>(value.green),
                            static_cast<float>(value.blue), static_cast<float>(value.alpha));
}

QFont qFont(const Font& font, const QPaintDevice& device) {
    constexpr double pointsPerInch = 72;
    QFont result = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    // In points, because QFont takes whole pixels only.
    result.setPointSizeF(font.size * pointsPerInch / device.logicalDpiY());
    result.setWeight(qWeight(font.weight));
    return result;
}

void QtCanvas::clip(const Shape& shape) { painter_.setClipPath(pathOf(shape), Qt::IntersectClip); }

void QtCanvas::setBlendMode(BlendMode mode) {
    painter_.setCompositionMode(mode == BlendMode::screen ? QPainter::CompositionMode_Screen
                                                          : QPainter::CompositionMode_SourceOver);
}

void QtCanvas::fill(const Shape& shape, const Color& color) {
    const QColor paint = qColor(color, appearance_);
    if (const auto* rect = std::get_if<Rect>(&shape))
        painter_.fillRect(qRect(*rect), paint);
    else
        painter_.fillPath(pathOf(shape), paint);
}

void QtCanvas::stroke(const Shape& shape, const Color& color, double lineWidth) {
    painter_.strokePath(pathOf(shape), QPen(qColor(color, appearance_), lineWidth));
}

void QtCanvas::fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) {
    const QPointF start(rect.x, rect.y);
    const QPointF end =
        direction == GradientDirection::leftToRight ? QPointF(rect.maxX(), rect.y) : QPointF(rect.x, rect.maxY());
    QLinearGradient gradient(start, end);
    for (const GradientStop& stop : stops)
        gradient.setColorAt(stop.location, qColor(stop.color, appearance_));
    painter_.fillRect(qRect(rect), gradient);
}

void QtCanvas::drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) {
    painter_.setFont(qFont(font, *painter_.device()));
    painter_.setPen(qColor(color, appearance_));
    if (font.monospacedDigits)
        drawFigures(painter_, qRect(rect), Qt::AlignCenter, qString(text));
    else
        painter_.drawText(qRect(rect), Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, qString(text));
}

double QtCanvas::boundingHeight(const Font& font) const {
    return QFontMetricsF(qFont(font, *painter_.device()), painter_.device()).height();
}

double QtCanvas::textWidth(std::string_view text, const Font& font) const {
    const QFontMetricsF metrics(qFont(font, *painter_.device()), painter_.device());
    return font.monospacedDigits ? figuresWidth(metrics, qString(text)) : metrics.horizontalAdvance(qString(text));
}

} // namespace vantry
