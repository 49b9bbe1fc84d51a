#pragma once

#include "base/Color.h"

#include <array>

namespace vantry {

/// The colours of the desktop's wallpaper.
namespace WallpaperThemeReader {

/// The vivid colours: a style of their own, and what stands in where there is no wallpaper to sample.
inline constexpr std::array<Rgba, 7> fallbackPalette{{
    {0.18, 0.34, 0.72},
    {0.12, 0.67, 0.78},
    {0.42, 0.25, 0.91},
    {0.68, 0.25, 0.91},
    {0.91, 0.24, 0.57},
    {0.96, 0.25, 0.3},
    {0.98, 0.49, 0.2},
}};

} // namespace WallpaperThemeReader

} // namespace vantry
