#pragma once

#include "rendering/Canvas.h"

namespace vantry {

// The type and the measures that the front ends share. Points on macOS, logical pixels elsewhere.

// ---- the popover

inline constexpr Font popoverTitleFont{15, FontWeight::semibold};
inline constexpr Font popoverBodyFont{12};
inline constexpr Font popoverFigureFont{12, FontWeight::medium, true};
inline constexpr Font popoverDetailFont{11};
inline constexpr Font popoverFootnoteFont{10};

inline constexpr int popoverSideMargin = 18;
inline constexpr int popoverTopMargin = 16;
inline constexpr int popoverBottomMargin = 14;
inline constexpr int popoverSpacing = 10;    ///< between rows
inline constexpr int popoverHeaderGap = 2;   ///< between the two lines of the header
inline constexpr int popoverRowSpacing = 8;  ///< between what stands in one row, and between the figures
inline constexpr int popoverBarHeight = 16;  ///< of the view that holds the bar
inline constexpr int popoverDetailLines = 3; ///< at most
inline constexpr int popoverErrorLines = 2;  ///< at most

// ---- the "Free Up Space" window

inline constexpr Font cleanupTitleFont{22, FontWeight::bold};
inline constexpr Font cleanupFigureFont{22, FontWeight::semibold, true};
inline constexpr Font cleanupHeadingFont{15, FontWeight::semibold};
inline constexpr Font cleanupRowTitleFont{13, FontWeight::medium};
inline constexpr Font cleanupBodyFont{12};
inline constexpr Font cleanupStrongFont{12, FontWeight::medium, true};
inline constexpr Font cleanupDetailFont{11};
inline constexpr Font cleanupBadgeFont{11, FontWeight::medium};

inline constexpr int cleanupMargin = 24; ///< between the window's edge and its content
inline constexpr int cleanupTopMargin = 20;
inline constexpr int cleanupSpacing = 14; ///< between the rows above the results
inline constexpr int cleanupIconSide = 48;
inline constexpr int cleanupHeaderGap = 2; ///< between the two lines of the header
inline constexpr int cleanupCardGap = 12;
inline constexpr int cleanupControlGap = 10;
inline constexpr int cleanupStatusGap = 3;

inline constexpr int cleanupCardRadius = 10;
inline constexpr int cleanupCardPadding = 14; ///< left and right of a card's content
inline constexpr int cleanupAccentWidth = 4;  ///< of a summary card's coloured stroke
inline constexpr int cleanupNoticePadding = 10;

inline constexpr int cleanupSectionGap = 26;
inline constexpr int cleanupResultsBottomMargin = 24;
inline constexpr int cleanupHeaderToCard = 8;

inline constexpr int cleanupSymbolSide = 22; ///< of the column of symbols and check boxes
inline constexpr int cleanupTextInset = 50;  ///< from a card's edge to the text behind a symbol or check box
inline constexpr int cleanupRowPadding = 11; ///< above and below a row's text
inline constexpr int cleanupRowLineGap = 2;  ///< between a row's title and its text
inline constexpr int cleanupMinimumRow = 54; ///< height
inline constexpr int cleanupAmountWidth = 124;
inline constexpr int cleanupAmountGap = 16;   ///< between a candidate's text and its amount
inline constexpr int cleanupBadgePadding = 8; ///< left and right
inline constexpr int cleanupBadgeGap = 5;     ///< between the amount and the badge
inline constexpr int cleanupRevealSide = 28;
inline constexpr int cleanupRevealGap = 8;
inline constexpr int cleanupRevealInset = 12; ///< to the card's edge
inline constexpr int cleanupStatusWidth = 168;
inline constexpr int cleanupColumnGap = 20; ///< between the columns of an avenue

inline constexpr int emptyStateSymbolSize = 28;
inline constexpr int emptyStateSpacing = 7;
inline constexpr int emptyStateWidth = 250;
inline constexpr int emptyStateRaise = 80; ///< above the middle

} // namespace vantry
