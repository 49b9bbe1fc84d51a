#include "rendering/StoragePalette.h"

#include "rendering/WallpaperThemeReader.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace vantry::StoragePalette {

namespace {

constexpr Rgba white{1, 1, 1};
constexpr Rgba black{0, 0, 0};
constexpr Rgba clear{0, 0, 0, 0};

// A gradient needs two colours; with fewer nothing is drawn.
void fillEvenGradient(Canvas& canvas, const Rect& rect, std::span<const Rgba> colors) {
    if (colors.size() < 2)
        return;
    std::vector<GradientStop> stops;
    stops.reserve(colors.size());
    for (std::size_t i = 0; i < colors.size(); ++i)
        stops.push_back({colors[i], static_cast<double>(i) / static_cast<double>(colors.size() - 1)});
    canvas.fillGradient(rect, stops, GradientDirection::leftToRight);
}

Rgba sheenColor(const Rgba& color) {
    constexpr double whiteShare = 0.18;
    const auto blend = [](double component) { return component + (1 - component) * whiteShare; };
    return {blend(color.red), blend(color.green), blend(color.blue), 0.22};
}

void drawSheen(Canvas& canvas, const Rect& rect, std::span<const Rgba> colors) {
    std::vector<Rgba> glow(colors.size());
    std::ranges::transform(colors, glow.begin(), sheenColor);
    const std::array<GradientStop, 5> light{{
        {clear, 0.0},
        {white.withAlpha(0.03), 0.24},
        {white.withAlpha(0.09), 0.5},
        {white.withAlpha(0.03), 0.76},
        {clear, 1.0},
    }};
    canvas.save();
    canvas.setBlendMode(BlendMode::screen);
    fillEvenGradient(canvas, rect.inset(0, rect.height * 0.18), glow);
    canvas.fillGradient(rect, light, GradientDirection::topToBottom);
    canvas.restore();
}

void drawCurrentTheme(Canvas& canvas, const Rect& rect, std::span<const Rgba> themeColors) {
    const auto colors = themeColors.size() > 1 ? themeColors : std::span<const Rgba>(gradientColors);
    fillEvenGradient(canvas, rect, colors);
    if (rect.width > 1.0 && rect.height > 2.0)
        drawSheen(canvas, rect, colors);
}

void drawSegments(Canvas& canvas, const Rect& rect, SegmentSizing sizing) {
    const auto shareOf = [&](const Segment& segment) { return sizing == SegmentSizing::equal ? 1.0 : segment.weight; };
    const double total = std::accumulate(macOSSegments.begin(), macOSSegments.end(), 0.0,
                                         [&](double sum, const Segment& segment) { return sum + shareOf(segment); });
    if (!(total > 0))
        return;
    double x = rect.x;
    for (std::size_t i = 0; i < macOSSegments.size(); ++i) {
        const Segment& segment = macOSSegments[i];
        const bool last = i + 1 == macOSSegments.size();
        // The last segment takes what is left, so the segments end exactly where the fill does.
        const double width = last ? std::max(rect.maxX() - x, 0.0) : rect.width * shareOf(segment) / total;
        canvas.fill(Rect{x, rect.y, width, rect.height}, segment.color);
        if (!last && width >= 1.0)
            canvas.fill(Rect{std::max(x, x + width - 0.5), rect.y, 0.5, rect.height}, black.withAlpha(0.13));
        x += width;
    }
}

} // namespace

void drawUsedFill(Canvas& canvas, const Rect& rect, BarStyle style, SegmentSizing segmentSizing,
                  std::span<const Rgba> themeColors) {
    switch (style) {
    case BarStyle::storageGradient: fillEvenGradient(canvas, rect, gradientColors); break;
    case BarStyle::vividTheme: fillEvenGradient(canvas, rect, WallpaperThemeReader::fallbackPalette); break;
    case BarStyle::currentTheme: drawCurrentTheme(canvas, rect, themeColors); break;
    case BarStyle::macOSSegments: drawSegments(canvas, rect, segmentSizing); break;
    }
}

Rgba availableColor(std::optional<Appearance> appearance) {
    return appearance == Appearance::dark ? Rgba{0.282, 0.298, 0.31} : Rgba{0.82, 0.824, 0.835};
}

Rgba borderColor(std::optional<Appearance> appearance) {
    return (appearance == Appearance::dark ? white : black).withAlpha(0.1);
}

} // namespace vantry::StoragePalette
