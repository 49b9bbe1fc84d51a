#pragma once

#include "platform/WindowList.h"

namespace vantry {

/// The desktop windows of the X11 display `$DISPLAY`. Each call opens its own connection, so any thread may call it.
/// Bounds are physical pixels divided by `scale`, as Qt's coordinates are.
class X11WindowList : public WindowList {
public:
    explicit X11WindowList(double scale) : scale_(scale) {}
    [[nodiscard]] std::vector<WindowInfo> onScreenWindows() const override;

private:
    double scale_;
};

} // namespace vantry
