#pragma once

#include <QColor>
#include <QPixmap>
#include <string_view>

class QPainter;
class QRectF;

namespace vantry {

// Symbols have the names of SF Symbols. A picture has one colour and comes from Ombrel's own drawings, from Breeze,
// whose icons share one line style, or from the session's icon theme; a frame with a dot if none has the symbol. Main
// thread.

/// A square of `side` logical pixels at the scale of a screen. Never empty.
[[nodiscard]] QPixmap symbolPicture(std::string_view name, int side, const QColor& color, double scale);
/// Draws the symbol in the middle of `rect`, at the scale of the paint device.
void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, int side, const QColor& color);

} // namespace vantry
