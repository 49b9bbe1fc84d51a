#pragma once

#include "platform/WindowList.h"

namespace vantry {

/// The desktop windows of the X11 display in `$DISPLAY`, by a connection of its own for each call, so that it can be
/// asked on any thread. Bounds are physical pixels divided by `scale`, that of Qt's coordinates.
class X11WindowList : public WindowList {
public:
    explicit X11WindowList(double scale) : scale_(scale) {}
    [[nodiscard]] std::vector<WindowInfo> onScreenWindows() const override;

private:
    double scale_;
};

} // namespace vantry
