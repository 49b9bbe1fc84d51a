#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"

#include <AppKit/AppKit.h>

namespace vantry {

// Building blocks of the popover and the window. Labels are not selectable.

/// One line; text that does not fit ends in an ellipsis.
[[nodiscard]] NSTextField* makeTextLabel(const Font& font, SystemColor color = SystemColor::label);
/// At most `lines` lines, 0 for no limit; text that does not fit ends in an ellipsis.
[[nodiscard]] NSTextField* makeWrappingLabel(const Font& font, SystemColor color = SystemColor::label,
                                             NSInteger lines = 0);

/// Aligned to the leading edge; every view is as wide as the stack.
[[nodiscard]] NSStackView* verticalStack(CGFloat spacing, NSArray<NSView*>* views);
/// Centred vertically; the view that hugs its content least takes the free width.
[[nodiscard]] NSStackView* horizontalStack(CGFloat spacing, NSArray<NSView*>* views);
/// Adds a view as wide as the vertical stack, without its insets.
void addFullWidth(NSStackView* stack, NSView* view);
/// Inserts such a view below `above`, or removes it. Hiding it is not enough: a stack detaches hidden views, which
/// drops the width constraint.
void setFullWidth(NSStackView* stack, NSView* view, NSView* above, bool isShown);

/// Pins the four edges of `view` to those of `holder`.
void pinEdges(NSView* view, NSView* holder, CGFloat horizontalPadding, CGFloat verticalPadding);

/// An empty view that takes the free width.
[[nodiscard]] NSView* makeFlexibleSpace();
void setHorizontalHugging(NSView* view, NSLayoutPriority priority);
/// Below the default priority, a view shrinks before others are cut off.
void setHorizontalResistance(NSView* view, NSLayoutPriority priority);

/// Activates the application. The `activate` method of macOS 14 is only a request, which the system refuses when the
/// user did not just turn to the application.
void activateApplication();

} // namespace vantry
