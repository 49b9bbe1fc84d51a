#pragma once

#include "platform/Workspace.h"

#include <filesystem>
#include <optional>

namespace vantry {

// The picture or film that is chosen for the desktop. Blocking, for a few seconds at most; any thread.

/// The preview picture of the chosen moving wallpaper, or else its film. Always absent on Linux.
[[nodiscard]] std::optional<std::filesystem::path> movingWallpaper();

/// The picture chosen for `screen`, or the current one of the chosen slideshow, if it can be read. On Linux from the
/// settings of the running desktop (GNOME, Cinnamon, MATE, KDE Plasma, Xfce, LXQt, sway, Hyprland), else the picture
/// that feh or nitrogen showed last.
[[nodiscard]] std::optional<std::filesystem::path> desktopPicture(const Screen& screen);

/// Where the system keeps the picture that it shows when none is chosen. The file may be missing.
[[nodiscard]] std::filesystem::path defaultDesktopPicture();

} // namespace vantry
