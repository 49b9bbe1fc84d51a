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

/// Pixels of about one colour.
struct ColorBin {
    RGB color;                 ///< their average
    double weight = 0;         ///< how many there are
    double vibranceWeight = 0; ///< the sum of their vibrance

    bool operator==(const ColorBin&) const = default;
};

/// The hues that get a place in the palette wherever there is enough of them.
enum class HueFamily { red, rose, violet };

[[nodiscard]] HSB hsb(const RGB& color);
[[nodiscard]] RGB rgb(const HSB& color);

/// The level of 0 to 15 that a component falls in: only 1 itself reaches the last.
[[nodiscard]] int quantized(double component);

/// How much a colour draws the eye; more than 0.
[[nodiscard]] double vibrance(const RGB& color);

/// Counts the pixels that are more than half opaque. Largest weight first, equal ones in the order of their levels.
[[nodiscard]] std::vector<ColorBin> colorBins(std::span<const PicturePixel> pixels);

[[nodiscard]] bool isInFamily(const HSB& color, HueFamily family);

/// The bin of `bins` that stands for the family; null when none is strong enough.
[[nodiscard]] const ColorBin* accent(std::span<const ColorBin> bins, HueFamily family);

/// Adds the colours of the heaviest bins that differ clearly from all in `chosen`, until there are `limit`.
void addDominantColors(std::span<const ColorBin> bins, std::size_t limit, std::vector<RGB>& chosen);

/// Adds what differs most and draws the eye, until there are `limit` or nothing differs any more.
void fillUp(std::span<const ColorBin> bins, std::size_t limit, std::vector<RGB>& chosen);

/// Stronger and brighter, for a thin bar; greys stay grey.
[[nodiscard]] HSB enriched(const HSB& color);

/// By hue, then the near-greys by brightness. Equal ones keep their order.
void sortForDisplay(std::vector<HSB>& colors);

/// All of it: `colorCount` colours, or fewer when the picture has fewer, or up to three accents when that is more.
/// Fewer than 2 are not asked for. Empty when no pixel is more than half opaque.
[[nodiscard]] std::vector<Rgba> paletteOfPixels(std::span<const PicturePixel> pixels, int colorCount);

} // namespace vantry::WallpaperThemeReader
