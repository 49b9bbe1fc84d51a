#include "rendering/SolidSwatchView.h"

#include "tests/support/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace vantry {

namespace {

using Kind = SolidSwatchView::Kind;

Drawing drawnBy(const SolidSwatchView& swatch, std::optional<Appearance> appearance,
                Size bounds = SolidSwatchView::fixedSize) {
    RecordingCanvas canvas;
    swatch.draw(canvas, bounds, appearance);
    return canvas.calls;
}

} // namespace

TEST(SolidSwatchView, StartsWithItsInitialValues) {
    for (const Kind kind : {Kind::used, Kind::available}) {
        const SolidSwatchView swatch(kind);
        EXPECT_EQ(swatch.kind, kind);
        EXPECT_EQ(swatch.barStyle, BarStyle::storageGradient);
        EXPECT_EQ(swatch.segmentSizing, SegmentSizing::verifiedSnapshot);
        EXPECT_EQ(swatch.themeColors,
                  std::vector<Rgba>(StoragePalette::gradientColors.begin(), StoragePalette::gradientColors.end()));
    }
    EXPECT_EQ(SolidSwatchView::fixedSize, (Size{12, 12}));
}

TEST(SolidSwatchView, DiffersByEachOfItsProperties) {
    const SolidSwatchView swatch(Kind::used);
    std::vector<SolidSwatchView> changed(4, swatch);
    changed[0].kind = Kind::available;
    changed[1].barStyle = BarStyle::vividTheme;
    changed[2].segmentSizing = SegmentSizing::equal;
    changed[3].themeColors.clear();
    for (const SolidSwatchView& other : changed)
        EXPECT_FALSE(other == swatch);
    EXPECT_TRUE(swatch == SolidSwatchView(Kind::used));
}

TEST(SolidSwatchView, TheUsedOneIsPaintedLikeTheBar) {
    const std::vector<Rgba> theme = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const Rect oval{1, 1, 10, 10};
    for (const auto& style : allBarStyles)
        for (const auto& sizing : allSegmentSizings) {
            SolidSwatchView swatch(Kind::used);
            swatch.barStyle = style.value;
            swatch.segmentSizing = sizing.value;
            swatch.themeColors = theme;
            RecordingCanvas used;
            StoragePalette::drawUsedFill(used, oval, style.value, sizing.value, theme);
            Drawing expected = {drawn::Save{}, drawn::Clip{Ellipse{oval}}};
            expected.insert(expected.end(), used.calls.begin(), used.calls.end());
            expected.emplace_back(drawn::Restore{});
            // No colour of its own depends on the appearance.
            for (const std::optional<Appearance> appearance :
                 {std::optional<Appearance>(), std::optional(Appearance::light), std::optional(Appearance::dark)})
                EXPECT_TRUE(sameDrawing(drawnBy(swatch, appearance), expected)) << style.rawValue;
        }
}

TEST(SolidSwatchView, TheAvailableOneHasTheColourOfTheTrackInEveryStyle) {
    const Ellipse oval{{1, 1, 10, 10}};
    for (const auto& style : allBarStyles) {
        SolidSwatchView swatch(Kind::available);
        swatch.barStyle = style.value;
        EXPECT_TRUE(sameDrawing(drawnBy(swatch, Appearance::light), {drawn::Fill{oval, Rgba{0.82, 0.824, 0.835}}}));
        EXPECT_TRUE(sameDrawing(drawnBy(swatch, std::nullopt), {drawn::Fill{oval, Rgba{0.82, 0.824, 0.835}}}));
        EXPECT_TRUE(sameDrawing(drawnBy(swatch, Appearance::dark), {drawn::Fill{oval, Rgba{0.282, 0.298, 0.31}}}));
    }
}

TEST(SolidSwatchView, TheOvalStaysOnePointInsideItsBounds) {
    EXPECT_EQ(std::get<drawn::Fill>(drawnBy(SolidSwatchView(Kind::available), Appearance::light, {20, 14}).at(0)).shape,
              Shape(Ellipse{{1, 1, 18, 12}}));
    EXPECT_EQ(std::get<drawn::Clip>(drawnBy(SolidSwatchView(Kind::used), Appearance::light, {20, 14}).at(1)).shape,
              Shape(Ellipse{{1, 1, 18, 12}}));
}

} // namespace vantry
