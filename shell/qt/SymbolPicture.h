#pragma once

#include <QColor>
#include <QPixmap>
#include <string_view>

class QPainter;
class QRectF;

namespace vantry {

/// Where the picture of a symbol comes from.
enum class SymbolSource {
    drawn,   ///< by Ombrel
    breeze,  ///< the icon theme whose icons are all drawn with the same lines
    theme,   ///< the theme of the session
    neutral, ///< a frame with a dot, in place of a symbol that is nowhere
};

// Symbols are named as in SF Symbols. A picture is of one colour. Main thread.

[[nodiscard]] SymbolSource symbolSource(std::string_view name);
/// A square of `side` logical pixels at the scale of a screen. Never empty.
[[nodiscard]] QPixmap symbolPicture(std::string_view name, int side, const QColor& color, double scale);
/// Draws the symbol in the middle of `rect`, at the scale of what is painted on.
void drawSymbol(QPainter& painter, std::string_view name, const QRectF& rect, int side, const QColor& color);

} // namespace vantry
