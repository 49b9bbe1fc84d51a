#include "rendering/WallpaperThemeReader.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(WallpaperThemeReader, TheFallbackPaletteIsTheSevenVividColours) {
    constexpr Rgba expected[] = {
        {0.18, 0.34, 0.72, 1}, {0.12, 0.67, 0.78, 1}, {0.42, 0.25, 0.91, 1}, {0.68, 0.25, 0.91, 1},
        {0.91, 0.24, 0.57, 1}, {0.96, 0.25, 0.3, 1},  {0.98, 0.49, 0.2, 1},
    };
    ASSERT_EQ(WallpaperThemeReader::fallbackPalette.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(WallpaperThemeReader::fallbackPalette[i], expected[i]) << i;
}

} // namespace vantry
