#pragma once

#include "base/Color.h"
#include "base/Geometry.h"
#include "rendering/Canvas.h"

#include <CoreGraphics/CoreGraphics.h>
#include <string>
#include <string_view>

namespace vantry::apple {

// Core Graphics and text on Qt's painter, which needs a QGuiApplication. y grows downwards.

/// Of one line, or of at most `lines` lines (0 is any number) that break at `width`.
[[nodiscard]] Size textSize(std::string_view text, const Font& font, double width = 0, int lines = 1);
[[nodiscard]] double fontHeight(const Font& font);

/// How a text is set into its rectangle.
struct TextStyle {
    Font font;
    Rgba color;
    enum class Alignment { left, centre, right } alignment = Alignment::left;
    enum class Elision { none, end, middle } elision = Elision::none;
    bool wraps = false;
};

void drawText(CGContextRef context, std::string_view text, const TextStyle& style, const Rect& rect);
void fill(CGContextRef context, const Shape& shape, const Rgba& color);
void stroke(CGContextRef context, const Shape& shape, const Rgba& color, double lineWidth);

/// A picture of `size` points at two pixels a point, to be released with `CGContextRelease`.
[[nodiscard]] CGContextRef makePicture(Size size);
[[nodiscard]] Rgba colorAt(CGContextRef picture, double x, double y);
/// As PNG.
void savePicture(CGContextRef picture, const std::string& file);

/// Colours, paths and gradients that were not released.
[[nodiscard]] int livingGraphicsObjects();

} // namespace vantry::apple
