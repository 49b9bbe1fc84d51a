#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"

#include <QColor>
#include <QString>

class QFont;
class QFontMetrics;
class QPainter;
class QRect;
class QRectF;
class QStyleOption;
class QWidget;

namespace vantry {

// The measures, type and colours that the parts of the "Free Up Space" window share. Logical pixels.

inline constexpr Font cleanupTitleFont{22, FontWeight::bold};
inline constexpr Font cleanupFigureFont{22, FontWeight::semibold, true};
inline constexpr Font cleanupHeadingFont{15, FontWeight::semibold};
inline constexpr Font cleanupRowTitleFont{13, FontWeight::medium};
inline constexpr Font cleanupBodyFont{12};
inline constexpr Font cleanupStrongFont{12, FontWeight::medium};
inline constexpr Font cleanupDetailFont{11};
inline constexpr Font cleanupBadgeFont{11, FontWeight::medium};

inline constexpr int cleanupMargin = 24;      ///< between the window's edge and what is in it
inline constexpr int cleanupCardRadius = 10;  ///< of every card
inline constexpr int cleanupSymbolSide = 22;  ///< the size that the icons of themes are drawn for
inline constexpr int cleanupTextInset = 50;   ///< from a card's edge to the text behind a symbol or check box
inline constexpr int cleanupRowPadding = 11;  ///< above and below a row's text
inline constexpr int cleanupCardPadding = 14; ///< beside what is in a card

[[nodiscard]] QColor roleColor(SystemColor role, Appearance appearance);
/// The role's colour, darkened in the light appearance until text of the size can be read on a card: the contrast is
/// `ratio` to one at least.
[[nodiscard]] QColor readableColor(SystemColor role, Appearance appearance, double ratio = 4.5);
[[nodiscard]] QColor cardColor(Appearance appearance);
/// Fills a card with a hairline around it.
void drawCard(QPainter& painter, const QRectF& rect, Appearance appearance);

/// The ring around a control that has the keyboard, while the keyboard is what the user moves about with.
void drawFocusRing(QPainter& painter, const QWidget& control, const QRect& rect);

/// How high `text` is when it is wrapped at `width`.
[[nodiscard]] int wrappedHeight(const QFontMetrics& metrics, const QString& text, int width);

} // namespace vantry
