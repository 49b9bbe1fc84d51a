#pragma once

#include "rendering/Canvas.h"
#include "shell/appkit/AppKitDrawing.h"

#include <CoreGraphics/CoreGraphics.h>

namespace vantry {

/// A `Canvas` on a Core Graphics context. It is plain C++, so that tests can record its calls on any system; what needs
/// AppKit is in `AppKitDrawing.h`. Each operation makes these calls:
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
    /// `context` is the current context in a flipped view's `drawRect:` and outlives the canvas. Dynamic colours are
    /// resolved for the current drawing appearance.
    explicit AppKitCanvas(CGContextRef context) : context_(context) {}

    void save() override { CGContextSaveGState(context_); }
    void restore() override { CGContextRestoreGState(context_); }
    void clip(const Shape& shape) override;
    void setBlendMode(BlendMode mode) override;
    void fill(const Shape& shape, const Color& color) override;
    void stroke(const Shape& shape, const Color& color, double lineWidth) override;
    void fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) override;
    void drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) override;
    [[nodiscard]] double boundingHeight(const Font& font) const override { return fontBoundingHeight(font); }
    [[nodiscard]] double textWidth(std::string_view text, const Font& font) const override {
        return textLineWidth(text, font);
    }

private:
    CGContextRef context_;
};

} // namespace vantry
