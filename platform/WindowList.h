#pragma once

#include "base/Geometry.h"

#include <string>
#include <vector>

namespace vantry {

/// A window on a screen.
struct WindowInfo {
    std::string ownerName; ///< of the application
    int ownerProcess = 0;  ///< its identifier
    Rect bounds;           ///< in the coordinates of a `Screen`'s frame
    int layer = 0;         ///< higher ones are in front

    bool operator==(const WindowInfo&) const = default;
};

/// The windows that may show a wallpaper.
class WindowList {
public:
    virtual ~WindowList() = default;

    /// On macOS all windows on the screens, frontmost first; on X11 those of the desktop type, and also the processes
    /// of the windows inside each. Empty if the system does not say. Blocking, briefly; any thread.
    [[nodiscard]] virtual std::vector<WindowInfo> onScreenWindows() const = 0;
};

} // namespace vantry
