#pragma once

#include "rendering/BarStyle.h"
#include "rendering/Canvas.h"

#include <array>
#include <optional>
#include <span>

namespace vantry {

/// The colours of the storage bar, and the one function that paints its used part, so that a bar and its swatch always
/// look alike. Main thread.
namespace StoragePalette {

/// One segment of the macOS style: `weight` is its share under `SegmentSizing::verifiedSnapshot`.
struct Segment {
    Color color;
    double weight = 0;
};

/// The rainbow, left to right.
inline constexpr std::array<Rgba, 6> gradientColors{{
    {0.922, 0.337, 0.31},
    {0.949, 0.584, 0.278},
    {0.973, 0.847, 0.278},
    {0.408, 0.82, 0.408},
    {0.278, 0.694, 0.671},
    {0.302, 0.616, 0.792},
}};

/// Left to right. Not sorted by weight: the two grey segments come last.
inline constexpr std::array<Segment, 11> macOSSegments{{
    {DynamicColor{SystemColor::red}, 36.8},
    {DynamicColor{SystemColor::orange}, 31.94},
    {DynamicColor{SystemColor::yellow}, 12.91},
    {DynamicColor{SystemColor::green}, 5.37},
    {DynamicColor{SystemColor::teal}, 2.07},
    {DynamicColor{SystemColor::blue}, 1.73},
    {DynamicColor{SystemColor::pink}, 1.32},
    {DynamicColor{SystemColor::cyan}, 0.56},
    {DynamicColor{SystemColor::mint}, 0.45},
    {DynamicColor{SystemColor::gray}, 27.38},
    {Rgba{0.39, 0.398, 0.41}, 29.87},
}};

/// The used part of a bar, painted into `rect` of a canvas that the caller has clipped to the bar's shape.
/// Only `BarStyle::currentTheme` uses `themeColors`; with fewer than two of them it falls back to the rainbow.
void drawUsedFill(Canvas& canvas, const Rect& rect, BarStyle style, SegmentSizing segmentSizing,
                  std::span<const Rgba> themeColors);

/// The unused part of the track. Without an appearance the light value.
[[nodiscard]] Rgba availableColor(std::optional<Appearance> appearance);

/// The bar's outline, likewise.
[[nodiscard]] Rgba borderColor(std::optional<Appearance> appearance);

} // namespace StoragePalette

} // namespace vantry
