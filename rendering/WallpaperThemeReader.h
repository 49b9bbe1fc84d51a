#pragma once

#include "base/Color.h"
#include "platform/WindowList.h"
#include "platform/Workspace.h"

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// The colours of the desktop's wallpaper. Every failure is silent: the next source is tried, or there is no palette.
namespace WallpaperThemeReader {

/// The vivid colours: a style of their own, and the fallback without a wallpaper to sample.
inline constexpr std::array<Rgba, 7> fallbackPalette{{
    {0.18, 0.34, 0.72},
    {0.12, 0.67, 0.78},
    {0.42, 0.25, 0.91},
    {0.68, 0.25, 0.91},
    {0.91, 0.24, 0.57},
    {0.96, 0.25, 0.3},
    {0.98, 0.49, 0.2},
}};

/// The sources of what is on the desktop. The functions block; they are called in the background.
struct Sources {
    std::shared_ptr<const WindowList> windows; ///< null where there is none
    std::function<std::vector<std::filesystem::path>(int process)> openFiles;
    std::function<std::optional<std::filesystem::path>()> movingWallpaper;
    std::function<std::optional<std::filesystem::path>(const Screen&)> desktopPicture;
    std::filesystem::path defaultPicture;
    std::function<std::optional<std::vector<Rgba>>(const std::filesystem::path& url, int colorCount)> palette;
};

/// The real ones, with `windows`.
[[nodiscard]] Sources systemSources(std::shared_ptr<const WindowList> windows);

/// The picture or film on `screen`: the one held open by a program whose window covers the screen, else the moving
/// wallpaper, else the picture chosen for the desktop, else the default one, which may be missing. Blocking.
[[nodiscard]] std::filesystem::path currentWallpaperURL(const Screen& screen, const Sources& sources);

/// The processes whose windows cover most of the screen with the frame `screenFrame`, frontmost first, without the
/// system's own programs. Pure.
[[nodiscard]] std::vector<int> rendererProcesses(std::span<const WindowInfo> windows, const Rect& screenFrame);

/// The first picture or film in `openFiles` that exists and is not inside an application bundle. Blocking.
[[nodiscard]] std::optional<std::filesystem::path> mediaAmong(std::span<const std::filesystem::path> openFiles);

/// Identifies a version of a file: path, modification date and size. Blocking.
[[nodiscard]] std::string identity(const std::filesystem::path& url);

/// About `colorCount` colours of the picture or film; absent when it cannot be read, empty when it is transparent.
/// Blocking, for as long as `readPicture`.
[[nodiscard]] std::optional<std::vector<Rgba>> palette(const std::filesystem::path& url, int colorCount);

/// The same for `url`, the current wallpaper of `screen`. If it cannot be read, the next source is tried.
[[nodiscard]] std::optional<std::vector<Rgba>> palette(const std::filesystem::path& url, int colorCount,
                                                       const Screen& screen, const Sources& sources);

} // namespace WallpaperThemeReader

} // namespace vantry
