#include "rendering/WallpaperPalette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <tuple>

namespace vantry::WallpaperThemeReader {

namespace {

constexpr int levels = 16;
constexpr double leastAccentSaturation = 0.24;
constexpr double leastAccentBrightness = 0.16;
constexpr double leastAccentWeight = 2;
constexpr double clearDifference = 0.018; // squared distances
constexpr double leastDifference = 0.01;
constexpr double greySaturation = 0.08;
constexpr double nearGreySaturation = 0.1;
constexpr double leastBrightness = 0.46;
constexpr double greatestBrightness = 0.98;

double component(std::uint8_t value) { return value / 255.0; }

double greatest(const RGB& color) { return std::max({color.red, color.green, color.blue}); }
double least(const RGB& color) { return std::min({color.red, color.green, color.blue}); }

double saturation(const RGB& color) {
    const double brightness = greatest(color);
    return brightness > 0 ? (brightness - least(color)) / brightness : 0;
}

double squaredDistance(const RGB& one, const RGB& other) {
    const double red = one.red - other.red;
    const double green = one.green - other.green;
    const double blue = one.blue - other.blue;
    return red * red + green * green + blue * blue;
}

// The squared distance to the nearest of `colors`.
double distance(const RGB& color, std::span<const RGB> colors) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const auto& other : colors)
        nearest = std::min(nearest, squaredDistance(color, other));
    return nearest;
}

double accentScore(const ColorBin& bin, const HSB& color) {
    return std::sqrt(bin.weight) * (2.2 * color.saturation + 0.35) * (color.brightness + 0.4);
}

} // namespace

HSB hsb(const RGB& color) {
    const double brightness = greatest(color);
    const double range = brightness - least(color);
    if (range <= 0)
        return {.hue = 0, .saturation = 0, .brightness = brightness};
    double sixth = 0;
    if (brightness == color.red)
        sixth = (color.green - color.blue) / range;
    else if (brightness == color.green)
        sixth = 2 + (color.blue - color.red) / range;
    else
        sixth = 4 + (color.red - color.green) / range;
    return {.hue = (sixth < 0 ? sixth + 6 : sixth) / 6, .saturation = range / brightness, .brightness = brightness};
}

RGB rgb(const HSB& color) {
    const double sixth = (color.hue - std::floor(color.hue)) * 6;
    const double part = sixth - std::floor(sixth);
    const double high = color.brightness;
    const double low = high * (1 - color.saturation);
    const double falling = high * (1 - color.saturation * part);
    const double rising = high * (1 - color.saturation * (1 - part));
    switch (static_cast<int>(sixth)) {
    case 0: return {high, rising, low};
    case 1: return {falling, high, low};
    case 2: return {low, high, rising};
    case 3: return {low, falling, high};
    case 4: return {rising, low, high};
    default: return {high, low, falling};
    }
}

int quantized(double component) { return std::clamp(static_cast<int>(component * (levels - 1)), 0, levels - 1); }

double vibrance(const RGB& color) {
    const double strength = saturation(color);
    return 0.18 + 3.4 * strength * strength + 0.65 * strength * std::sqrt(greatest(color));
}

std::vector<ColorBin> colorBins(std::span<const PicturePixel> pixels) {
    // The colours are first summed as bytes, which is exact. With rounding errors a red whose green and blue have the
    // same mean could get the hue 1 instead of 0.
    std::vector<ColorBin> bins(levels * levels * levels);
    for (const auto& pixel : pixels) {
        if (component(pixel.alpha) <= 0.5)
            continue;
        const RGB color{component(pixel.red), component(pixel.green), component(pixel.blue)};
        const int place = (quantized(color.red) * levels + quantized(color.green)) * levels + quantized(color.blue);
        ColorBin& bin = bins[static_cast<std::size_t>(place)];
        bin.color.red += pixel.red;
        bin.color.green += pixel.green;
        bin.color.blue += pixel.blue;
        bin.weight += 1;
        bin.vibranceWeight += vibrance(color);
    }
    std::erase_if(bins, [](const ColorBin& bin) { return bin.weight == 0; });
    for (auto& bin : bins) {
        const double whole = 255 * bin.weight;
        bin.color = {bin.color.red / whole, bin.color.green / whole, bin.color.blue / whole};
    }
    std::ranges::stable_sort(bins, std::ranges::greater(), &ColorBin::weight);
    return bins;
}

bool isInFamily(const HSB& color, HueFamily family) {
    switch (family) {
    case HueFamily::red: return color.hue >= 0.955 || color.hue <= 0.075;
    case HueFamily::rose: return color.hue >= 0.9 && color.hue < 0.955;
    case HueFamily::violet: return color.hue >= 0.69 && color.hue < 0.9;
    }
    return false;
}

const ColorBin* accent(std::span<const ColorBin> bins, HueFamily family) {
    const ColorBin* best = nullptr;
    double bestScore = 0;
    for (const auto& bin : bins) {
        const HSB color = hsb(bin.color);
        if (!isInFamily(color, family) || color.saturation < leastAccentSaturation ||
            color.brightness < leastAccentBrightness || bin.weight < leastAccentWeight)
            continue;
        if (const double score = accentScore(bin, color); score > bestScore) {
            best = &bin;
            bestScore = score;
        }
    }
    return best;
}

void addDominantColors(std::span<const ColorBin> bins, std::size_t limit, std::vector<RGB>& chosen) {
    for (const auto& bin : bins) {
        if (chosen.size() >= limit)
            return;
        if (distance(bin.color, chosen) > clearDifference)
            chosen.push_back(bin.color);
    }
}

void fillUp(std::span<const ColorBin> bins, std::size_t limit, std::vector<RGB>& chosen) {
    while (chosen.size() < limit) {
        const ColorBin* best = nullptr;
        double bestScore = 0;
        for (const auto& bin : bins) {
            const double nearest = distance(bin.color, chosen); // 0 for chosen colours
            const double score = (nearest + 0.04) * std::sqrt(bin.weight + 1.8 * bin.vibranceWeight);
            if (nearest > leastDifference && score > bestScore) {
                best = &bin;
                bestScore = score;
            }
        }
        if (!best)
            return;
        chosen.push_back(best->color);
    }
}

HSB enriched(const HSB& color) {
    return {.hue = color.hue,
            .saturation =
                color.saturation < greySaturation ? color.saturation : std::min(color.saturation * 1.32 + 0.09, 1.0),
            .brightness = std::clamp(color.brightness * 1.1, leastBrightness, greatestBrightness)};
}

void sortForDisplay(std::vector<HSB>& colors) {
    std::ranges::stable_sort(colors, std::ranges::less(), [](const HSB& color) {
        const bool isNearGrey = color.saturation < nearGreySaturation;
        return std::tuple(isNearGrey, isNearGrey ? color.brightness : color.hue);
    });
}

std::vector<Rgba> paletteOfPixels(std::span<const PicturePixel> pixels, int colorCount) {
    const auto bins = colorBins(pixels);
    const std::size_t limit = std::min(bins.size(), static_cast<std::size_t>(std::max(colorCount, 2)));
    std::vector<RGB> chosen;
    for (const auto family : {HueFamily::red, HueFamily::rose, HueFamily::violet})
        if (const auto* bin = accent(bins, family))
            chosen.push_back(bin->color);
    addDominantColors(bins, limit, chosen);
    fillUp(bins, limit, chosen);

    std::vector<HSB> colors;
    std::ranges::transform(chosen, std::back_inserter(colors), [](const RGB& color) { return enriched(hsb(color)); });
    sortForDisplay(colors);
    std::vector<Rgba> palette;
    std::ranges::transform(colors, std::back_inserter(palette), [](const HSB& color) {
        const RGB components = rgb(color);
        return Rgba{components.red, components.green, components.blue, 1};
    });
    return palette;
}

} // namespace vantry::WallpaperThemeReader
