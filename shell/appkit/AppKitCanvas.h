#pragma once

#include "rendering/Canvas.h"

#include <CoreGraphics/CoreGraphics.h>

namespace vantry {

/// A `Canvas` on a Core Graphics context. Plain C++ on the C interface, so that it can be checked call by call on any
/// system; what needs AppKit is in `AppKitDrawing.h`. One operation is these calls:
///
///     save, restore   SaveGState, RestoreGState
///     clip            the shape's path, Clip
///     setBlendMode    SetBlendMode
///     fill            SetFillColorWithColor, then FillRect, or the shape's path and FillPath
///     stroke          SetStrokeColorWithColor, SetLineWidth, the shape's path, StrokePath
///     fillGradient    SaveGState, ClipToRect, DrawLinearGradient, RestoreGState
///     the path        BeginPath, then AddRect, AddPath (rounded) or AddEllipseInRect
class AppKitCanvas : public Canvas {
public:
    /// `context` is the current one of a flipped view's `drawRect:` and outlives the canvas; dynamic colours are
    /// resolved for the appearance that the view draws in.
    explicit AppKitCanvas(CGContextRef context);

    void save() override;
    void restore() override;
    void clip(const Shape& shape) override;
    void setBlendMode(BlendMode mode) override;
    void fill(const Shape& shape, const Color& color) override;
    void stroke(const Shape& shape, const Color& color, double lineWidth) override;
    void fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) override;
    void drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) override;
    [[nodiscard]] double boundingHeight(const Font& font) const override;
    [[nodiscard]] double textWidth(std::string_view text, const Font& font) const override;

private:
    CGContextRef context_;
};

} // namespace vantry
