#pragma once

#include "platform/Workspace.h"

#include <filesystem>
#include <optional>

namespace vantry {

// Which picture or film the system has been told to show on the desktop. Blocking, for a few seconds at most; any
// thread.

/// The picture that stands for the moving wallpaper that was chosen, or the film itself, where both are there; nowhere
/// but on macOS.
[[nodiscard]] std::optional<std::filesystem::path> movingWallpaper();

/// The picture chosen for `screen`, or the one that the chosen slideshow shows now, if it can be read. On Linux by the
/// settings of the desktop that runs: GNOME, Cinnamon, MATE, KDE Plasma, Xfce, LXQt, sway, Hyprland, and elsewhere what
/// feh or nitrogen was last told.
[[nodiscard]] std::optional<std::filesystem::path> desktopPicture(const Screen& screen);

/// Where the system keeps the picture that is shown when none was chosen; it need not be there.
[[nodiscard]] std::filesystem::path defaultDesktopPicture();

} // namespace vantry
