#pragma once

#include "base/Color.h"
#include "base/Geometry.h"

#include <span>
#include <string_view>
#include <variant>

namespace vantry {

struct RoundedRect {
    Rect rect;
    double radius = 0;

    bool operator==(const RoundedRect&) const = default;
};

/// The ellipse inscribed in `rect`.
struct Ellipse {
    Rect rect;

    bool operator==(const Ellipse&) const = default;
};

using Shape = std::variant<Rect, RoundedRect, Ellipse>;

/// `location` runs from 0 at the gradient's start to 1 at its end.
struct GradientStop {
    Color color;
    double location = 0;

    bool operator==(const GradientStop&) const = default;
};

enum class GradientDirection { leftToRight, topToBottom };

/// How paint is combined with what is below.
enum class BlendMode { sourceOver, screen };

enum class FontWeight { regular, medium, semibold, bold };

/// The system's interface font.
struct Font {
    double size = 13; ///< points
    FontWeight weight = FontWeight::regular;
    bool monospacedDigits = false;

    bool operator==(const Font&) const = default;
};

/// Everything that Ombrel draws itself is drawn with these operations. y grows downwards. A dynamic colour is resolved
/// by the canvas for the appearance that it draws in. Main thread.
class Canvas {
public:
    virtual ~Canvas() = default;

    /// Saves and restores the clip and the blend mode.
    virtual void save() = 0;
    virtual void restore() = 0;
    /// Narrows the clip to its intersection with `shape`.
    virtual void clip(const Shape& shape) = 0;
    virtual void setBlendMode(BlendMode mode) = 0;

    virtual void fill(const Shape& shape, const Color& color) = 0;
    /// A line of `lineWidth`, centred on the shape's edge.
    virtual void stroke(const Shape& shape, const Color& color, double lineWidth) = 0;
    /// Fills `rect` with a linear gradient that spans it.
    virtual void fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) = 0;

    /// One line, centred in `rect` and not clipped to it.
    virtual void drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) = 0;
    /// The height that holds every glyph of the font.
    [[nodiscard]] virtual double boundingHeight(const Font& font) const = 0;
    [[nodiscard]] virtual double textWidth(std::string_view text, const Font& font) const = 0;
};

} // namespace vantry
