#pragma once

#include <QRect>
#include <QWindow>

namespace vantry {

/// Asks the window manager to keep maximised windows below `area`, which lies in pixels of X11 and whose columns reach
/// up to the root window's upper edge without another screen between. An empty area takes that back. Does nothing
/// outside of X11.
void reserveTopEdge(WId window, const QRect& area);

/// Whether the top edge is reserved down to `y`, in pixels of X11, give or take one, by a strip of Ombrel: this one's
/// or another user's or home folder's on the same display.
[[nodiscard]] bool isReservedByStrip(int y);

} // namespace vantry
