#include "rendering/StoragePalette.h"

#include "rendering/WallpaperThemeReader.h"
#include "tests/support/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <numeric>
#include <span>
#include <vector>

namespace vantry {

namespace {

using Colors = std::vector<Rgba>;

const Colors rainbow = {
    {0.922, 0.337, 0.31, 1}, {0.949, 0.584, 0.278, 1}, {0.973, 0.847, 0.278, 1},
    {0.408, 0.82, 0.408, 1}, {0.278, 0.694, 0.671, 1}, {0.302, 0.616, 0.792, 1},
};

const Colors vivid = {
    {0.18, 0.34, 0.72, 1}, {0.12, 0.67, 0.78, 1}, {0.42, 0.25, 0.91, 1}, {0.68, 0.25, 0.91, 1},
    {0.91, 0.24, 0.57, 1}, {0.96, 0.25, 0.3, 1},  {0.98, 0.49, 0.2, 1},
};

struct ExpectedSegment {
    Color color;
    double weight;
};

const ExpectedSegment segments[] = {
    {DynamicColor{SystemColor::red, 1}, 36.8},     {DynamicColor{SystemColor::orange, 1}, 31.94},
    {DynamicColor{SystemColor::yellow, 1}, 12.91}, {DynamicColor{SystemColor::green, 1}, 5.37},
    {DynamicColor{SystemColor::teal, 1}, 2.07},    {DynamicColor{SystemColor::blue, 1}, 1.73},
    {DynamicColor{SystemColor::pink, 1}, 1.32},    {DynamicColor{SystemColor::cyan, 1}, 0.56},
    {DynamicColor{SystemColor::mint, 1}, 0.45},    {DynamicColor{SystemColor::gray, 1}, 27.38},
    {Rgba{0.39, 0.398, 0.41, 1}, 29.87},
};

constexpr Rect bar{3, 5, 40, 7};

Drawing usedFill(const Rect& rect, BarStyle style, SegmentSizing sizing = SegmentSizing::verifiedSnapshot,
                 std::span<const Rgba> themeColors = {}) {
    RecordingCanvas canvas;
    StoragePalette::drawUsedFill(canvas, rect, style, sizing, themeColors);
    return canvas.calls;
}

DrawCall evenGradient(const Rect& rect, const Colors& colors) {
    drawn::FillGradient gradient{rect, {}, GradientDirection::leftToRight};
    for (const Rgba& color : colors)
        gradient.stops.push_back(
            {color, static_cast<double>(gradient.stops.size()) / static_cast<double>(colors.size() - 1)});
    return gradient;
}

/// A theme's gradient and the sheen over it, for a rectangle large enough for one.
Drawing themeWithSheen(const Rect& rect, const Colors& colors) {
    Colors glow;
    for (const Rgba& color : colors)
        glow.push_back({color.red * 0.82 + 0.18, color.green * 0.82 + 0.18, color.blue * 0.82 + 0.18, 0.22});
    const Rect middle{rect.x, rect.y + 0.18 * rect.height, rect.width, 0.64 * rect.height};
    return {
        evenGradient(rect, colors),
        drawn::Save{},
        drawn::SetBlendMode{BlendMode::screen},
        evenGradient(middle, glow),
        drawn::FillGradient{rect,
                            {{Rgba{0, 0, 0, 0}, 0.0},
                             {Rgba{1, 1, 1, 0.03}, 0.24},
                             {Rgba{1, 1, 1, 0.09}, 0.5},
                             {Rgba{1, 1, 1, 0.03}, 0.76},
                             {Rgba{0, 0, 0, 0}, 1.0}},
                            GradientDirection::topToBottom},
        drawn::Restore{},
    };
}

double shareOf(const ExpectedSegment& segment, SegmentSizing sizing) {
    return sizing == SegmentSizing::equal ? 1.0 / 11 : segment.weight / 150.4;
}

/// The segments of the rectangle with their dividers.
Drawing segmentsIn(const Rect& rect, SegmentSizing sizing) {
    Drawing calls;
    double share = 0;
    for (const auto& segment : segments) {
        const double x = rect.x + rect.width * share;
        const double width = rect.width * shareOf(segment, sizing);
        calls.push_back(drawn::Fill{Rect{x, rect.y, width, rect.height}, segment.color});
        if (&segment != std::end(segments) - 1 && width >= 1)
            calls.push_back(drawn::Fill{Rect{x + width - 0.5, rect.y, 0.5, rect.height}, Rgba{0, 0, 0, 0.13}});
        share += shareOf(segment, sizing);
    }
    return calls;
}

bool isDivider(const drawn::Fill& fill) { return fill.color == Color(Rgba{0, 0, 0, 0.13}); }

/// The segments alone, without dividers.
std::vector<Rect> segmentRects(const Drawing& calls) {
    std::vector<Rect> rects;
    for (const DrawCall& call : calls)
        if (const auto& fill = std::get<drawn::Fill>(call); !isDivider(fill))
            rects.push_back(std::get<Rect>(fill.shape));
    return rects;
}

} // namespace

TEST(StoragePalette, TheRainbowHasItsSixColoursInOrder) {
    EXPECT_EQ(Colors(StoragePalette::gradientColors.begin(), StoragePalette::gradientColors.end()), rainbow);
}

TEST(StoragePalette, TheSegmentsHaveTheirColoursAndWeightsInOrder) {
    ASSERT_EQ(StoragePalette::macOSSegments.size(), std::size(segments));
    for (std::size_t i = 0; i < std::size(segments); ++i) {
        EXPECT_EQ(StoragePalette::macOSSegments[i].color, segments[i].color) << i;
        EXPECT_EQ(StoragePalette::macOSSegments[i].weight, segments[i].weight) << i;
    }
}

TEST(StoragePalette, TheWeightsOfTheSegmentsAddUp) {
    const double sum = std::accumulate(StoragePalette::macOSSegments.begin(), StoragePalette::macOSSegments.end(), 0.0,
                                       [](double before, const auto& segment) { return before + segment.weight; });
    EXPECT_NEAR(sum, 150.4, roundingOnly * 100);
}

TEST(StoragePalette, TheTrackIsDarkInTheDarkAppearanceOnly) {
    EXPECT_EQ(StoragePalette::availableColor(Appearance::dark), (Rgba{0.282, 0.298, 0.31, 1}));
    EXPECT_EQ(StoragePalette::availableColor(Appearance::light), (Rgba{0.82, 0.824, 0.835, 1}));
    EXPECT_EQ(StoragePalette::availableColor(std::nullopt), (Rgba{0.82, 0.824, 0.835, 1}));
}

TEST(StoragePalette, TheBorderIsWhiteInTheDarkAppearanceOnly) {
    EXPECT_EQ(StoragePalette::borderColor(Appearance::dark), (Rgba{1, 1, 1, 0.1}));
    EXPECT_EQ(StoragePalette::borderColor(Appearance::light), (Rgba{0, 0, 0, 0.1}));
    EXPECT_EQ(StoragePalette::borderColor(std::nullopt), (Rgba{0, 0, 0, 0.1}));
}

TEST(UsedFill, TheRainbowRunsOnceAcrossTheRectangle) {
    EXPECT_TRUE(sameDrawing(usedFill(bar, BarStyle::storageGradient), {evenGradient(bar, rainbow)}));
}

TEST(UsedFill, TheVividColoursRunOnceAcrossTheRectangle) {
    EXPECT_TRUE(sameDrawing(usedFill(bar, BarStyle::vividTheme), {evenGradient(bar, vivid)}));
}

TEST(UsedFill, TheSizingAndTheThemeDoNotAffectTheOtherGradients) {
    const Colors theme = {{1, 0, 0}, {0, 0, 1}};
    for (const auto style : {BarStyle::storageGradient, BarStyle::vividTheme})
        EXPECT_EQ(usedFill(bar, style, SegmentSizing::equal, theme), usedFill(bar, style));
    EXPECT_EQ(usedFill(bar, BarStyle::currentTheme, SegmentSizing::equal, theme),
              usedFill(bar, BarStyle::currentTheme, SegmentSizing::verifiedSnapshot, theme));
    for (const auto sizing : {SegmentSizing::equal, SegmentSizing::verifiedSnapshot})
        EXPECT_EQ(usedFill(bar, BarStyle::macOSSegments, sizing, theme),
                  usedFill(bar, BarStyle::macOSSegments, sizing));
}

TEST(UsedFill, TheThemeRunsAcrossTheRectangleUnderASheen) {
    const Colors themes[] = {
        {{1, 0, 0}, {0, 0, 1}},
        {{0, 0, 0}, {0.5, 0.25, 0.75}, {1, 1, 1}},
        vivid,
        {{0.1, 0.2, 0.3, 0.5}, {0.4, 0.5, 0.6, 1}}, // the glow has an alpha of its own
    };
    for (const Colors& theme : themes)
        EXPECT_TRUE(sameDrawing(usedFill(bar, BarStyle::currentTheme, SegmentSizing::verifiedSnapshot, theme),
                                themeWithSheen(bar, theme), roundingOnly));
}

TEST(UsedFill, AThemeOfFewerThanTwoColoursIsTheRainbowWithASheen) {
    for (const Colors& theme : {Colors{}, Colors{{1, 0, 0}}}) {
        const Drawing calls = usedFill(bar, BarStyle::currentTheme, SegmentSizing::verifiedSnapshot, theme);
        EXPECT_TRUE(sameDrawing(calls, themeWithSheen(bar, rainbow), roundingOnly));
        EXPECT_TRUE(sameDrawing({calls.at(0)}, usedFill(bar, BarStyle::storageGradient)));
    }
}

TEST(UsedFill, ThereIsASheenOnlyAboveOnePointOfWidthAndTwoOfHeight) {
    const double justAboveOne = std::nextafter(1.0, 2.0);
    const double justAboveTwo = std::nextafter(2.0, 3.0);
    const struct {
        double width;
        double height;
        bool sheen;
    } cases[] = {
        {1.0, 7, false},
        {justAboveOne, 7, true},
        {0.5, 7, false},
        {40, 2.0, false},
        {40, justAboveTwo, true},
        {40, 1.0, false},
        {1.0, 2.0, false},
        {justAboveOne, 2.0, false},
        {1.0, justAboveTwo, false},
        {justAboveOne, justAboveTwo, true},
    };
    const Colors theme = {{1, 0, 0}, {0, 0, 1}};
    for (const auto& [width, height, sheen] : cases) {
        const Rect rect{3, 5, width, height};
        const Drawing expected = sheen ? themeWithSheen(rect, theme) : Drawing{evenGradient(rect, theme)};
        EXPECT_TRUE(sameDrawing(usedFill(rect, BarStyle::currentTheme, SegmentSizing::verifiedSnapshot, theme),
                                expected, roundingOnly))
            << width << " x " << height;
    }
}

TEST(UsedFill, SegmentsAreSideBySideWithDividersBetween) {
    const Rect rects[] = {
        bar,
        {0, 0, 150.4, 7}, // a point a unit of weight
        {0, 0, 19, 7},    // the bar beside a label
        {0, 0, 1000, 7},  // the last segment has no divider however wide it is
        {3, 5, 11, 7},    // equal segments of exactly one point
        {3, 5, 10, 7},    // and of less
        {3, 5, 1, 7},     // nothing but hairlines
        {-20, -3, 200, 10},
    };
    for (const Rect& rect : rects)
        for (const auto sizing : {SegmentSizing::equal, SegmentSizing::verifiedSnapshot})
            EXPECT_TRUE(sameDrawing(usedFill(rect, BarStyle::macOSSegments, sizing), segmentsIn(rect, sizing), 1e-9))
                << rect.width << (sizing == SegmentSizing::equal ? " equal" : " by weight");
}

TEST(UsedFill, SegmentsEndExactlyWhereTheRectangleEnds) {
    for (double width = 0.3; width < 200; width += 0.7)
        for (const auto sizing : {SegmentSizing::equal, SegmentSizing::verifiedSnapshot}) {
            const Rect rect{0, 5, width, 7};
            const auto rects = segmentRects(usedFill(rect, BarStyle::macOSSegments, sizing));
            ASSERT_EQ(rects.size(), 11U);
            EXPECT_EQ(rects.front().x, rect.x);
            EXPECT_EQ(rects.back().maxX(), rect.maxX()) << width;
            for (std::size_t i = 1; i < rects.size(); ++i)
                EXPECT_EQ(rects[i].x, rects[i - 1].maxX()) << width << " " << i;
        }
}

TEST(UsedFill, ASegmentHasADividerIfItIsAtLeastOnePointWide) {
    // Every weight is held against one point: the width at which the segment is one point wide, and a little around it.
    for (std::size_t i = 0; i + 1 < std::size(segments); ++i) {
        const struct {
            double width; ///< of the segment
            bool divider;
        } cases[] = {{1.001, true}, {0.999, false}};
        for (const auto& [width, divider] : cases) {
            const Rect rect{0, 0, width * 150.4 / segments[i].weight, 7};
            const Drawing calls = usedFill(rect, BarStyle::macOSSegments);
            std::size_t segment = 0;
            for (std::size_t call = 0; call < calls.size() && segment <= i; ++call) {
                if (isDivider(std::get<drawn::Fill>(calls[call])) || segment++ != i)
                    continue;
                const bool followed = call + 1 < calls.size() && isDivider(std::get<drawn::Fill>(calls[call + 1]));
                EXPECT_EQ(followed, divider) << i << " at " << width;
            }
        }
    }
}

TEST(UsedFill, EqualSegmentsOfExactlyOnePointHaveDividers) {
    // 11 * 1 / 11 is exact.
    const Drawing calls = usedFill({0, 0, 11, 7}, BarStyle::macOSSegments, SegmentSizing::equal);
    EXPECT_EQ(calls.size(), 11U + 10U);
    EXPECT_EQ(std::get<drawn::Fill>(calls[1]), (drawn::Fill{Rect{0.5, 0, 0.5, 7}, Rgba{0, 0, 0, 0.13}}));
    EXPECT_EQ(usedFill({0, 0, std::nextafter(11.0, 0.0), 7}, BarStyle::macOSSegments, SegmentSizing::equal).size(),
              11U);
}

TEST(UsedFill, TheLastSegmentNeverHasANegativeWidth) {
    // The others run to the left here, and past the end.
    const auto rects = segmentRects(usedFill({0, 0, -11, 7}, BarStyle::macOSSegments, SegmentSizing::equal));
    ASSERT_EQ(rects.size(), 11U);
    EXPECT_EQ(rects.back().width, 0);
}

TEST(UsedFill, LeavesTheStateOfTheCanvasUnchanged) {
    const Colors theme = {{1, 0, 0}, {0, 0, 1}};
    for (const auto& row : allBarStyles) {
        int saved = 0;
        for (const DrawCall& call : usedFill(bar, row.value, SegmentSizing::equal, theme)) {
            EXPECT_FALSE(std::holds_alternative<drawn::Clip>(call)) << row.rawValue;
            saved += std::holds_alternative<drawn::Save>(call)      ? 1
                     : std::holds_alternative<drawn::Restore>(call) ? -1
                                                                    : 0;
            if (std::holds_alternative<drawn::SetBlendMode>(call)) {
                EXPECT_EQ(saved, 1) << row.rawValue;
            }
        }
        EXPECT_EQ(saved, 0) << row.rawValue;
    }
}

} // namespace vantry
