#pragma once

#include <QFontMetricsF>
#include <QRectF>
#include <QString>

class QPainter;

namespace vantry {

// Digits of one width, for figures that change in place or stand below each other. Each digit is drawn in the middle of
// a cell as wide as the font's widest one. The font's own feature for that ("tnum") would need Qt 6.7, and fonts differ
// in whether they have it.

/// Draws one line in the middle of the height of `rect`: from its left, to its right or in its middle.
void drawFigures(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text);
[[nodiscard]] double figuresWidth(const QFontMetricsF& metrics, const QString& text);

} // namespace vantry
