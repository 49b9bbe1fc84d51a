#pragma once

#include <QFontMetricsF>
#include <QRectF>
#include <QString>

class QPainter;

namespace vantry {

// Equally wide digits, for figures that change in place or form a column. Each digit is centred in a cell as wide as
// the font's widest digit. The font feature "tnum" would need Qt 6.7, and not every font has it.

/// Draws one line, centred vertically in `rect`; `alignment` is horizontal.
void drawFigures(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text);
[[nodiscard]] double figuresWidth(const QFontMetricsF& metrics, const QString& text);

} // namespace vantry
