#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"
#include "rendering/SolidSwatchView.h"

#include <AppKit/AppKit.h>

/// Draws a toolkit-free view, and draws it again when the appearance has changed. Flipped; clicks go to what is below.
@interface OmbrelDrawnView : NSView

/// What a subclass draws, into (0, 0, size).
- (void)drawOnCanvas:(vantry::Canvas&)canvas size:(vantry::Size)size appearance:(vantry::Appearance)appearance;

@end

/// A `SolidSwatchView`, at its fixed size.
@interface OmbrelSwatchView : OmbrelDrawnView

- (instancetype)initWithKind:(vantry::SolidSwatchView::Kind)kind;
- (void)setView:(const vantry::SolidSwatchView&)view;

@end
