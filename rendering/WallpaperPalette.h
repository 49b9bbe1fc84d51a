#pragma once

#include "base/Color.h"
#include "platform/Picture.h"

#include <optional>
#include <span>
#include <vector>

namespace vantry::WallpaperThemeReader {

// From the pixels of a picture to a few pleasant colours, step by step. Pure; any thread.

/// Components from 0 to 1.
struct RGB {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const RGB&) const = default;
};

/// Hue, saturation and brightness from 0 to 1. A grey has the hue 0.
struct HSB {
    double hue = 0;
    double saturation = 0;
    double brightness = 0;
};

/// Pixels of similar colours.
struct ColorBin {
    RGB color;                 ///< their average
    double weight = 0;         ///< their number
    double vibranceWeight = 0; ///< the sum of their vibrance

    bool operator==(const ColorBin&) const = default;
};

/// The hues that always get a place in the palette if the picture has enough of them.
enum class HueFamily { red, rose, violet };

[[nodiscard]] HSB hsb(const RGB& color);
[[nodiscard]] RGB rgb(const HSB& color);

/// The level of a component, 0 to 15. Only 1 itself reaches the last.
[[nodiscard]] int quantized(double component);

/// How vivid a colour is; more than 0.
[[nodiscard]] double vibrance(const RGB& color);

/// Counts the pixels that are more than half opaque. Largest weight first, equal ones in the order of their levels.
[[nodiscard]] std::vector<ColorBin> colorBins(std::span<const PicturePixel> pixels);

[[nodiscard]] bool isInFamily(const HSB& color, HueFamily family);

/// The bin that represents the family; null when none is strong enough.
[[nodiscard]] const ColorBin* accent(std::span<const ColorBin> bins, HueFamily family);

/// Adds the colours of the heaviest bins that differ clearly from all in `chosen`, until there are `limit`.
void addDominantColors(std::span<const ColorBin> bins, std::size_t limit, std::vector<RGB>& chosen);

/// Adds the most different and most vivid colours, until there are `limit` or the rest is too similar.
void fillUp(std::span<const ColorBin> bins, std::size_t limit, std::vector<RGB>& chosen);

/// Stronger and brighter, for a thin bar; greys stay grey.
[[nodiscard]] HSB enriched(const HSB& color);

/// By hue, then the near-greys by brightness. Equal ones keep their order.
void sortForDisplay(std::vector<HSB>& colors);

/// All steps: `colorCount` colours (at least 2), fewer when the picture has fewer, or up to three accents if that is
/// more. Empty when no pixel is more than half opaque.
[[nodiscard]] std::vector<Rgba> paletteOfPixels(std::span<const PicturePixel> pixels, int colorCount);

} // namespace vantry::WallpaperThemeReader
