#pragma once

#include "rendering/Canvas.h"

#include <AppKit/AppKit.h>

namespace vantry {

// The pieces that the popover and the window are put together from. Labels are not selectable.

/// One line that ends in an ellipsis where it does not fit.
[[nodiscard]] NSTextField* makeTextLabel(const Font& font);
/// At most `lines` lines, the last of which ends in an ellipsis where it does not fit; 0 is as many as it takes.
[[nodiscard]] NSTextField* makeWrappingLabel(const Font& font, NSInteger lines);

/// Leading alignment; every view is as wide as the stack.
[[nodiscard]] NSStackView* verticalStack(CGFloat spacing, NSArray<NSView*>* views);
/// Centred vertically; the view that hugs its content least takes the free width.
[[nodiscard]] NSStackView* horizontalStack(CGFloat spacing, NSArray<NSView*>* views);
/// Adds a view that is as wide as the vertical stack inside its insets.
void addFullWidth(NSStackView* stack, NSView* view);

/// An empty view that takes the free width.
[[nodiscard]] NSView* makeFlexibleSpace();
void setHorizontalHugging(NSView* view, NSLayoutPriority priority);
/// Below the default, a view gives way to others before it is cut off.
void setHorizontalResistance(NSView* view, NSLayoutPriority priority);

/// Makes the application the active one, whatever has the keyboard. Not by `activate` of macOS 14, a request that the
/// system refuses to an application that the user did not just turn to.
void activateApplication();

} // namespace vantry
