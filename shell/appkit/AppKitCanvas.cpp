#include "shell/appkit/AppKitCanvas.h"

#include <algorithm>
#include <vector>

namespace vantry {

namespace {

CGRect cgRect(const Rect& rect) { return CGRectMake(rect.x, rect.y, rect.width, rect.height); }

// Core Graphics aborts when a corner radius is larger than half a side.
void addRounded(CGContextRef context, const RoundedRect& rounded) {
    CGPathRef path = CGPathCreateWithRoundedRect(cgRect(rounded.rect), std::min(rounded.radius, rounded.rect.width / 2),
                                                 std::min(rounded.radius, rounded.rect.height / 2), nullptr);
    CGContextAddPath(context, path);
    CGPathRelease(path);
}

void beginPathOf(CGContextRef context, const Shape& shape) {
    CGContextBeginPath(context);
    if (const auto* rect = std::get_if<Rect>(&shape))
        CGContextAddRect(context, cgRect(*rect));
    else if (const auto* rounded = std::get_if<RoundedRect>(&shape))
        addRounded(context, *rounded);
    else
        CGContextAddEllipseInRect(context, cgRect(std::get<Ellipse>(shape).rect));
}

Rgba rgbaOf(const Color& color) {
    if (const auto* dynamic = std::get_if<DynamicColor>(&color)) {
        const Rgba value = drawnColor(dynamic->role);
        return value.withAlpha(value.alpha * dynamic->alpha);
    }
    return std::get<Rgba>(color);
}

void setColor(CGContextRef context, void (*set)(CGContextRef, CGColorRef), const Color& color) {
    const Rgba value = rgbaOf(color);
    CGColorRef paint = CGColorCreateSRGB(value.red, value.green, value.blue, value.alpha);
    set(context, paint);
    CGColorRelease(paint);
}

CGGradientRef createGradient(std::span<const GradientStop> stops) {
    std::vector<CGFloat> components;
    std::vector<CGFloat> locations;
    for (const GradientStop& stop : stops) {
        const Rgba value = rgbaOf(stop.color);
        components.insert(components.end(), {value.red, value.green, value.blue, value.alpha});
        locations.push_back(stop.location);
    }
    CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGGradientRef gradient =
        CGGradientCreateWithColorComponents(space, components.data(), locations.data(), locations.size());
    CGColorSpaceRelease(space);
    return gradient;
}

} // namespace

void AppKitCanvas::clip(const Shape& shape) {
    beginPathOf(context_, shape);
    CGContextClip(context_);
}

void AppKitCanvas::setBlendMode(BlendMode mode) {
    CGContextSetBlendMode(context_, mode == BlendMode::screen ? kCGBlendModeScreen : kCGBlendModeNormal);
}

void AppKitCanvas::fill(const Shape& shape, const Color& color) {
    setColor(context_, CGContextSetFillColorWithColor, color);
    if (const auto* rect = std::get_if<Rect>(&shape)) {
        CGContextFillRect(context_, cgRect(*rect));
    } else {
        beginPathOf(context_, shape);
        CGContextFillPath(context_);
    }
}

void AppKitCanvas::stroke(const Shape& shape, const Color& color, double lineWidth) {
    setColor(context_, CGContextSetStrokeColorWithColor, color);
    CGContextSetLineWidth(context_, lineWidth);
    beginPathOf(context_, shape);
    CGContextStrokePath(context_);
}

void AppKitCanvas::fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) {
    CGGradientRef gradient = createGradient(stops);
    if (!gradient)
        return;
    const CGPoint start = CGPointMake(rect.x, rect.y);
    const CGPoint end = direction == GradientDirection::leftToRight ? CGPointMake(rect.maxX(), rect.y)
                                                                    : CGPointMake(rect.x, rect.maxY());
    CGContextSaveGState(context_);
    CGContextClipToRect(context_, cgRect(rect));
    CGContextDrawLinearGradient(context_, gradient, start, end, 0);
    CGContextRestoreGState(context_);
    CGGradientRelease(gradient);
}

void AppKitCanvas::drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) {
    drawTextLine(text, font, rgbaOf(color), rect);
}

} // namespace vantry
