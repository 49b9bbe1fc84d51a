#pragma once

#include "app/Look.h"
#include "base/Color.h"

#include <QColor>
#include <QString>

class QFont;
class QFontMetrics;
class QLabel;
class QPainter;
class QRect;
class QRectF;
class QStyleOption;
class QWidget;

namespace vantry {

// Colours and painting that the parts of the "Free Up Space" window share.

[[nodiscard]] QColor roleColor(SystemColor role, Appearance appearance);
/// The role's colour, adjusted until its contrast with a card is at least `ratio` to one.
[[nodiscard]] QColor readableColor(SystemColor role, Appearance appearance, double ratio = 4.5);
/// An empty label that takes no HTML.
[[nodiscard]] QLabel* plainLabel(const Font& font, QWidget* parent);
void setTextColor(QLabel& label, SystemColor role, Appearance appearance);
[[nodiscard]] QColor cardColor(Appearance appearance);
/// Fills a card with a hairline around it.
void drawCard(QPainter& painter, const QRectF& rect, Appearance appearance);

/// Draws the focus ring if the control has the focus and the user navigates by keyboard.
void drawFocusRing(QPainter& painter, const QWidget& control, const QRect& rect);

/// The height of `text` wrapped at `width`.
[[nodiscard]] int wrappedHeight(const QFontMetrics& metrics, const QString& text, int width);

} // namespace vantry
