#pragma once

#include "rendering/Canvas.h"

#include <QFont>
#include <QPaintDevice>
#include <QPainter>

namespace vantry {

/// The interface font at a size in logical pixels, whatever the resolution of `device`.
[[nodiscard]] QFont qFont(const Font& font, const QPaintDevice& device);

/// A `Canvas` on a `QPainter`.
class QtCanvas : public Canvas {
public:
    /// `painter` is active and outlives the canvas; dynamic colours are resolved for `appearance`.
    QtCanvas(QPainter& painter, Appearance appearance) : painter_(painter), appearance_(appearance) {
        painter_.setRenderHint(QPainter::Antialiasing);
    }

    void save() override { painter_.save(); }
    void restore() override { painter_.restore(); }
    void clip(const Shape& shape) override;
    void setBlendMode(BlendMode mode) override;
    void fill(const Shape& shape, const Color& color) override;
    void stroke(const Shape& shape, const Color& color, double lineWidth) override;
    void fillGradient(const Rect& rect, std::span<const GradientStop> stops, GradientDirection direction) override;
    void drawText(std::string_view text, const Font& font, const Color& color, const Rect& rect) override;
    [[nodiscard]] double boundingHeight(const Font& font) const override;
    [[nodiscard]] double textWidth(std::string_view text, const Font& font) const override;

private:
    QPainter& painter_;
    Appearance appearance_;
};

} // namespace vantry
