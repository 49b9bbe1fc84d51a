#include "tests/apple/appkit/Graphics.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

int living = 0;

struct Counted {
    Counted() { ++living; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --living; }
};

} // namespace

struct CGColor : Counted {
    explicit CGColor(const QColor& paint) : color(paint) {}
    QColor color;
};
struct CGColorSpace : Counted {};
struct CGPath : Counted {
    QPainterPath path;
};
struct CGGradient : Counted {
    QGradientStops stops;
};
struct CGContext : Counted {
    explicit CGContext(QSize size) : image(size, QImage::Format_ARGB32_Premultiplied) {}
    QImage image;
    QPainter painter;
    QPainterPath path;
    QColor fillColor;
    QColor strokeColor;
    double lineWidth = 1;
};

namespace vantry::apple {

namespace {

constexpr int pixelsPerPoint = 2;

QFont qFont(const Font& font) {
    constexpr QFont::Weight weights[] = {QFont::Normal, QFont::Medium, QFont::DemiBold, QFont::Bold};
    QFont result(QStringLiteral("Inter")); // guess: its proportions are close to those of San Francisco
    result.setPixelSize(static_cast<int>(std::lround(font.size)));
    result.setWeight(weights[static_cast<int>(font.weight)]);
    result.setHintingPreference(QFont::PreferNoHinting);
    return result;
}

QString qString(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QColor qColor(const Rgba& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QRectF qRect(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

QPainterPath pathOf(const Shape& shape) {
    QPainterPath path;
    if (const auto* rounded = std::get_if<RoundedRect>(&shape))
        path.addRoundedRect(qRect(rounded->rect), rounded->radius, rounded->radius);
    else if (const auto* rect = std::get_if<Rect>(&shape))
        path.addRect(qRect(*rect));
    else
        path.addEllipse(qRect(std::get<Ellipse>(shape).rect));
    return path;
}

} // namespace

Size textSize(std::string_view text, const Font& font, double width, int lines) {
    const QFont face = qFont(font);
    const QFontMetricsF metrics(face);
    const double lineHeight = std::ceil(metrics.height());
    if (width <= 0)
        return {std::ceil(metrics.horizontalAdvance(qString(text))), lineHeight};
    QTextLayout layout(qString(text), face);
    Size size;
    layout.beginLayout();
    for (int count = 0; lines == 0 || count < lines; ++count) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        size.width = std::max(size.width, std::ceil(line.naturalTextWidth()));
        size.height += lineHeight;
    }
    layout.endLayout();
    return {size.width, std::max(size.height, lineHeight)};
}

double fontHeight(const Font& font) { return QFontMetricsF(qFont(font)).height(); }

void drawText(CGContextRef context, std::string_view text, const TextStyle& style, const Rect& rect) {
    constexpr Qt::AlignmentFlag alignments[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    const QFont font = qFont(style.font);
    context->painter.setFont(font);
    context->painter.setPen(qColor(style.color));
    const QFontMetricsF metrics(font);
    QString shown = qString(text);
    if (style.elision != TextStyle::Elision::none && !style.wraps)
        shown = metrics.elidedText(
            shown, style.elision == TextStyle::Elision::middle ? Qt::ElideMiddle : Qt::ElideRight, rect.width + 0.5);
    QTextOption option(alignments[static_cast<int>(style.alignment)] | (style.wraps ? Qt::AlignTop : Qt::AlignVCenter));
    option.setWrapMode(style.wraps ? QTextOption::WordWrap : QTextOption::NoWrap);
    context->painter.save();
    if (style.wraps) // lines that are left out
        context->painter.setClipRect(qRect(rect), Qt::IntersectClip);
    context->painter.drawText(qRect(rect), shown, option);
    context->painter.restore();
}

void fill(CGContextRef context, const Shape& shape, const Rgba& color) {
    context->painter.fillPath(pathOf(shape), qColor(color));
}

void stroke(CGContextRef context, const Shape& shape, const Rgba& color, double lineWidth) {
    context->painter.strokePath(pathOf(shape), QPen(qColor(color), lineWidth));
}

CGContextRef makePicture(Size size) {
    auto* context = new CGContext(QSize(static_cast<int>(size.width), static_cast<int>(size.height)) * pixelsPerPoint);
    context->image.setDevicePixelRatio(pixelsPerPoint);
    context->image.fill(Qt::white);
    context->painter.begin(&context->image);
    context->painter.setRenderHint(QPainter::Antialiasing);
    return context;
}

Rgba colorAt(CGContextRef picture, double x, double y) {
    const QColor color =
        picture->image.pixelColor(static_cast<int>(x * pixelsPerPoint), static_cast<int>(y * pixelsPerPoint));
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

void savePicture(CGContextRef picture, const std::string& file) { picture->image.save(QString::fromStdString(file)); }

int livingGraphicsObjects() { return living; }

} // namespace vantry::apple

using namespace vantry::apple;

extern "C" {

extern const CFStringRef kCGColorSpaceSRGB = nullptr;

CGColorRef CGColorCreateSRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    return new CGColor(qColor({red, green, blue, alpha}));
}
void CGColorRelease(CGColorRef color) { delete color; }
CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef) { return new CGColorSpace; }
void CGColorSpaceRelease(CGColorSpaceRef space) { delete space; }

// "If the corners do not fit, the program ends with an assertion": corner widths and heights of at most half the side.
CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight,
                                      const CGAffineTransform*) {
    if (cornerWidth < 0 || cornerHeight < 0 || 2 * cornerWidth > rect.size.width ||
        2 * cornerHeight > rect.size.height) {
        std::fprintf(stderr, "corners that do not fit their rectangle\n");
        std::abort();
    }
    auto* path = new CGPath;
    path->path.addRoundedRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height, cornerWidth,
                              cornerHeight);
    return path;
}
void CGPathRelease(CGPathRef path) { delete path; }

CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef, const CGFloat* components, const CGFloat* locations,
                                                  size_t count) {
    auto* gradient = new CGGradient;
    for (size_t index = 0; index < count; ++index, components += 4)
        gradient->stops << QGradientStop(locations[index],
                                         qColor({components[0], components[1], components[2], components[3]}));
    return gradient;
}
void CGGradientRelease(CGGradientRef gradient) { delete gradient; }

void CGContextRelease(CGContextRef context) { delete context; }
void CGContextSaveGState(CGContextRef context) { context->painter.save(); }
void CGContextRestoreGState(CGContextRef context) { context->painter.restore(); }
void CGContextTranslateCTM(CGContextRef context, CGFloat x, CGFloat y) { context->painter.translate(x, y); }
void CGContextScaleCTM(CGContextRef context, CGFloat x, CGFloat y) { context->painter.scale(x, y); }
void CGContextBeginPath(CGContextRef context) { context->path = {}; }
void CGContextAddRect(CGContextRef context, CGRect rect) {
    context->path.addRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}
void CGContextAddEllipseInRect(CGContextRef context, CGRect rect) {
    context->path.addEllipse(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}
void CGContextAddPath(CGContextRef context, CGPathRef path) { context->path.addPath(path->path); }
void CGContextClip(CGContextRef context) {
    context->painter.setClipPath(context->path, Qt::IntersectClip);
    context->path = {};
}
void CGContextClipToRect(CGContextRef context, CGRect rect) {
    context->painter.setClipRect(QRectF(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height),
                                 Qt::IntersectClip);
}
void CGContextFillPath(CGContextRef context) {
    context->painter.fillPath(context->path, context->fillColor);
    context->path = {};
}
void CGContextStrokePath(CGContextRef context) {
    context->painter.strokePath(context->path, QPen(context->strokeColor, context->lineWidth));
    context->path = {};
}
void CGContextFillRect(CGContextRef context, CGRect rect) {
    context->painter.fillRect(QRectF(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height),
                              context->fillColor);
}
void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color) { context->fillColor = color->color; }
void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color) { context->strokeColor = color->color; }
void CGContextSetLineWidth(CGContextRef context, CGFloat width) { context->lineWidth = width; }
void CGContextSetBlendMode(CGContextRef context, CGBlendMode mode) {
    context->painter.setCompositionMode(mode == kCGBlendModeScreen ? QPainter::CompositionMode_Screen
                                                                   : QPainter::CompositionMode_SourceOver);
}
// Neither before the start nor behind the end unless asked for, and the callers clip.
void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient, CGPoint start, CGPoint end,
                                 CGGradientDrawingOptions) {
    QLinearGradient paint(start.x, start.y, end.x, end.y);
    paint.setStops(gradient->stops);
    context->painter.fillRect(context->painter.clipBoundingRect(), paint);
}
}
