#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"

#include <AppKit/AppKit.h>

namespace vantry {

// The measures and type that the parts of the "Free Up Space" window share. Points.

inline constexpr Font cleanupTitleFont{22, FontWeight::bold};
inline constexpr Font cleanupFigureFont{22, FontWeight::semibold, true};
inline constexpr Font cleanupHeadingFont{15, FontWeight::semibold};
inline constexpr Font cleanupRowTitleFont{13, FontWeight::medium};
inline constexpr Font cleanupBodyFont{12};
inline constexpr Font cleanupStrongFont{12, FontWeight::medium, true};
inline constexpr Font cleanupDetailFont{11};
inline constexpr Font cleanupBadgeFont{11, FontWeight::medium};

inline constexpr CGFloat cleanupMargin = 24;      ///< between the window's edge and what is in it
inline constexpr CGFloat cleanupCardRadius = 10;  ///< of every card
inline constexpr CGFloat cleanupSymbolSide = 22;  ///< the column of symbols and check boxes
inline constexpr CGFloat cleanupSymbolSize = 16;  ///< of the symbols themselves
inline constexpr CGFloat cleanupTextInset = 50;   ///< from a card's edge to the text behind a symbol or check box
inline constexpr CGFloat cleanupRowPadding = 11;  ///< above and below a row's text
inline constexpr CGFloat cleanupCardPadding = 14; ///< beside what is in a card
inline constexpr CGFloat cleanupLowestRow = 54;

/// A label of the window, in the colour of a role.
[[nodiscard]] NSTextField* makeCleanupLabel(const Font& font, SystemColor color);
[[nodiscard]] NSTextField* makeCleanupWrappingLabel(const Font& font, SystemColor color);
/// Pins all four edges of `view` to those of the view that holds it.
void pinEdges(NSView* view, NSView* holder, CGFloat horizontalPadding, CGFloat verticalPadding);

} // namespace vantry

/// A rounded box with a hairline around it, both in colours that follow the appearance. Without a radius of its own it
/// is a capsule.
@interface OmbrelCardView : NSView

@property(nonatomic, strong) NSColor* fillColor;
@property(nonatomic, strong) NSColor* edgeColor; ///< nil for none
@property(nonatomic) CGFloat cornerRadius;       ///< 0 for a capsule

/// A card as results and figures stand on.
+ (instancetype)card;

@end
