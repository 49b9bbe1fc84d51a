#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"
#include "rendering/SolidSwatchView.h"
#include "rendering/VantryView.h"

#include <AppKit/AppKit.h>

/// Draws a toolkit-free view, and redraws when the appearance changes. Flipped; clicks pass through.
@interface OmbrelDrawnView : NSView

/// Overridden by subclasses: draws into (0, 0, size).
- (void)drawOnCanvas:(vantry::Canvas&)canvas size:(vantry::Size)size appearance:(vantry::Appearance)appearance;

@end

/// A `SolidSwatchView`, at its fixed size.
@interface OmbrelSwatchView : OmbrelDrawnView

- (instancetype)initWithKind:(vantry::SolidSwatchView::Kind)kind;
- (void)setView:(const vantry::SolidSwatchView&)view;

@end

/// A `VantryView`. Screen readers get what `VantryView::accessibility()` says: a progress indicator with label and
/// value, or nothing.
@interface OmbrelBarView : OmbrelDrawnView

- (void)setView:(const vantry::VantryView&)view;

@end
