#pragma once

#include "rendering/VantryView.h"
#include "shell/appkit/DrawnView.h"

/// A `VantryView` that a screen reader sees as the view says: a progress indicator with its label and value, or
/// nothing.
@interface OmbrelBarView : OmbrelDrawnView

- (void)setView:(const vantry::VantryView&)view;

@end
