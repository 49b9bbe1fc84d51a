#pragma once

#include "rendering/VantryView.h"

namespace vantry {

/// The storage bar for a tray that gives every item a small square, where a bar of its natural shape would shrink to a
/// hairline: a thick capsule across the whole square or, with the percentage, the figure above a thinner one. A tray
/// does not report its colour, so track and figure have outlines that work on light and on dark panels.
namespace TrayBarView {

/// Draws `bar` into the square (0, 0, side, side), `side` in whole device pixels from 16 to 64. The percent sign, or
/// the whole figure, is left out if it does not fit. Main thread.
void draw(Canvas& canvas, const VantryView& bar, double side, std::optional<Appearance> appearance);

} // namespace TrayBarView

} // namespace vantry
