#pragma once

#include <QRect>
#include <QWindow>

namespace vantry {

/// Asks the window manager to keep maximised windows below `area` (X11 pixels). No other screen may be above it. An
/// empty area releases the space. Does nothing outside X11.
void reserveTopEdge(WId window, const QRect& area);

/// Whether an Ombrel strip on this display reserves the top edge down to `y` (X11 pixels, within one pixel): this
/// strip, or one of another instance.
[[nodiscard]] bool isReservedByStrip(int y);

} // namespace vantry
