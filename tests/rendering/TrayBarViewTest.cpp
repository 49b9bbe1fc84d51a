#include "rendering/TrayBarView.h"

#include "tests/support/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

namespace {

// The colour of the panel is unknown, so these are the same for both appearances.
constexpr Rgba outline{0, 0, 0, 0.55};
constexpr Rgba track{0.82, 0.824, 0.835, 0.92};
constexpr Rgba endMark{1, 1, 1, 0.9};

constexpr int smallestSide = 16;
constexpr int largestSide = 64;

StorageSnapshot usedPercent(std::int64_t percent) { return {"Disk", 100, 100 - percent, {}}; }

VantryView viewOf(std::optional<StorageSnapshot> snapshot, bool label) {
    VantryView view;
    view.snapshot = std::move(snapshot);
    view.showsPercentageLabel = label;
    return view;
}

RecordingCanvas drawnBy(const VantryView& view, double side, std::optional<Appearance> appearance = Appearance::light,
                        double characterWidth = 0.6) {
    RecordingCanvas canvas;
    canvas.characterWidth = characterWidth;
    TrayBarView::draw(canvas, view, side, appearance);
    return canvas;
}

Rect boundsOf(const Shape& shape) {
    if (const auto* rounded = std::get_if<RoundedRect>(&shape))
        return rounded->rect;
    if (const auto* ellipse = std::get_if<Ellipse>(&shape))
        return ellipse->rect;
    return std::get<Rect>(shape);
}

/// The capsule with its outline.
Rect capsule(const RecordingCanvas& canvas) { return boundsOf(canvas.all<drawn::Fill>().at(0).shape); }

/// What is painted in the capsule's used part, for a style of one gradient.
std::optional<Rect> usedRect(const RecordingCanvas& canvas) {
    const auto gradients = canvas.all<drawn::FillGradient>();
    return gradients.empty() ? std::nullopt : std::optional(gradients.at(0).rect);
}

std::optional<drawn::DrawText> figure(const RecordingCanvas& canvas) {
    const auto texts = canvas.all<drawn::DrawText>();
    return texts.empty() ? std::nullopt : std::optional(texts.back());
}

/// Where the characters leave ink: digits are no higher than three quarters of the font's size.
Rect inkOf(const RecordingCanvas& canvas, const drawn::DrawText& text) {
    const double width = canvas.textWidth(text.text, text.font);
    const double height = 0.75 * text.font.size;
    return {text.rect.x + (text.rect.width - width) / 2, text.rect.y + (text.rect.height - height) / 2, width, height};
}

/// Also true for what reaches the edge; sums may be off by their rounding.
bool isInside(const Rect& rect, const Rect& square) {
    constexpr double rounding = 1e-9;
    return rect.x >= square.x - rounding && rect.y >= square.y - rounding && rect.maxX() <= square.maxX() + rounding &&
           rect.maxY() <= square.maxY() + rounding;
}

} // namespace

TEST(TrayBarView, EverythingLiesInsideTheSquare) {
    const std::optional<StorageSnapshot> snapshots[] = {std::nullopt,    usedPercent(0),  usedPercent(1),
                                                        usedPercent(7),  usedPercent(47), usedPercent(99),
                                                        usedPercent(100)};
    for (int side = smallestSide; side <= largestSide; ++side)
        for (const bool label : {false, true})
            for (const auto& snapshot : snapshots)
                for (const auto& style : allBarStyles)
                    for (const double characterWidth : {0.3, 0.5, 0.6, 0.75}) {
                        const double length = side;
                        const Rect square{0, 0, length, length};
                        VantryView view = viewOf(snapshot, label);
                        view.barStyle = style.value;
                        const auto canvas = drawnBy(view, side, Appearance::light, characterWidth);
                        for (const auto& fill : canvas.all<drawn::Fill>())
                            ASSERT_TRUE(isInside(boundsOf(fill.shape), square)) << side << drawingText(canvas.calls);
                        for (const auto& gradient : canvas.all<drawn::FillGradient>())
                            ASSERT_TRUE(isInside(gradient.rect, square)) << side << drawingText(canvas.calls);
                        for (const auto& clip : canvas.all<drawn::Clip>())
                            ASSERT_TRUE(isInside(boundsOf(clip.shape), square)) << side << drawingText(canvas.calls);
                        EXPECT_TRUE(canvas.all<drawn::Stroke>().empty());
                        if (const auto text = figure(canvas)) {
                            const Rect above{0, 0, length, capsule(canvas).y};
                            ASSERT_TRUE(isInside(inkOf(canvas, *text), above)) << side << drawingText(canvas.calls);
                        }
                    }
}

TEST(TrayBarView, WithoutAFigureTheCapsuleLiesAcrossTheMiddle) {
    const struct {
        int side;
        Rect capsule;
    } cases[] = {
        {16, {0, 4, 16, 8}},  {18, {0, 4, 18, 10}},  {22, {0, 5, 22, 12}},  {24, {0, 6, 24, 12}},
        {32, {0, 8, 32, 16}}, {48, {0, 12, 48, 24}}, {64, {0, 15, 64, 34}}, {23, {0, 5, 23, 12}},
    };
    for (const auto& [side, expected] : cases)
        EXPECT_EQ(capsule(drawnBy(viewOf(usedPercent(47), false), side)), expected) << side;
    for (int side = smallestSide; side <= largestSide; ++side) {
        const Rect rect = capsule(drawnBy(viewOf(usedPercent(47), false), side));
        EXPECT_EQ(rect.x, 0);
        EXPECT_EQ(rect.width, side);
        EXPECT_LE(std::abs(rect.y - (side - rect.maxY())), 1) << side; // as near to the middle as whole pixels allow
        EXPECT_GE(rect.height, side * 0.4) << side;
        EXPECT_EQ(rect.y, std::floor(rect.y)) << side;
        EXPECT_EQ(rect.height, std::floor(rect.height)) << side;
    }
}

TEST(TrayBarView, WithAFigureTheCapsuleLiesBelowIt) {
    const struct {
        int side;
        Rect capsule;
    } cases[] = {
        {16, {0, 10, 16, 5}},  {22, {0, 14, 22, 7}},  {24, {0, 15, 24, 8}},
        {32, {0, 20, 32, 11}}, {48, {0, 30, 48, 16}}, {64, {0, 39, 64, 22}},
    };
    for (const auto& [side, expected] : cases) {
        const auto canvas = drawnBy(viewOf(usedPercent(47), true), side);
        EXPECT_EQ(capsule(canvas), expected) << side;
        ASSERT_TRUE(figure(canvas)) << side;
        EXPECT_EQ(figure(canvas)->rect, (Rect{0, 0, static_cast<double>(side), expected.y})) << side;
    }
    for (int side = smallestSide; side <= largestSide; ++side) {
        const Rect rect = capsule(drawnBy(viewOf(usedPercent(47), true), side));
        EXPECT_LT(rect.maxY(), side) << "the lower edge has a margin at " << side;
        EXPECT_GE(rect.height, side * 0.25) << side;
    }
}

TEST(TrayBarView, TheFigureIsAsLargeAsFitsAndLosesItsSignFirst) {
    const struct {
        std::optional<StorageSnapshot> snapshot;
        int side;
        double characterWidth;
        const char* text; ///< null: left out
        double size;
    } cases[] = {
        {usedPercent(47), 22, 0.6, "47%", 12},                                              // 21.6 wide
        {usedPercent(47), 22, 0.63, "47%", 11},                                             // 20.8
        {usedPercent(47), 22, 0.7, "47%", 10},                                              // 21
        {usedPercent(47), 22, 0.8, "47%", 9},                                               // 21.6
        {usedPercent(47), 22, 0.82, "47", 12},                                              // 22.1 would not
        {usedPercent(47), 22, 1.2, "47", 9},                                                // 21.6
        {usedPercent(47), 22, 1.23, nullptr, 0}, {usedPercent(47), 24, 1.0 / 3, "47%", 13}, //
        {usedPercent(100), 22, 0.6, "100%", 9},                                             // 21.6
        {usedPercent(100), 22, 0.62, "100", 11},                                            // 20.5
        {usedPercent(100), 16, 0.6, nullptr, 0},                                            // 16.2
        {usedPercent(100), 16, 0.59, "100", 9},                                             //
        {usedPercent(47), 16, 0.6, "47", 9},                                                //
        {usedPercent(7), 16, 0.6, "7%", 9},                                                 //
        {usedPercent(0), 22, 0.6, "0%", 12},                                                //
        {usedPercent(47), 64, 0.5, "47%", 36},                                              //
        {usedPercent(47), 64, 0.8, "47%", 26},                                              // 62.4
        {usedPercent(47), 64, 0.83, "47", 36}, // 64.7 would not; the sign costs less than a hard-to-read size
        {std::nullopt, 22, 0.6, "\u2014%", 12},  {std::nullopt, 22, 1.25, "\u2014", 12}, // 15 each
        {std::nullopt, 22, 2.5, nullptr, 0},                                             // 22.5
    };
    for (const auto& [snapshot, side, characterWidth, text, size] : cases) {
        const auto canvas = drawnBy(viewOf(snapshot, true), side, Appearance::light, characterWidth);
        const auto drawn = figure(canvas);
        const auto percentage = viewOf(snapshot, true).percentageText();
        ASSERT_EQ(drawn.has_value(), text != nullptr) << percentage << " in " << side << " by " << characterWidth;
        if (drawn) {
            EXPECT_EQ(drawn->text, text) << side << " by " << characterWidth;
            EXPECT_EQ(drawn->font, (Font{size, FontWeight::semibold, true})) << percentage << " in " << side;
        }
    }
}

TEST(TrayBarView, WithoutRoomForAFigureTheCapsuleIsCentred) {
    const auto withLabel = drawnBy(viewOf(usedPercent(100), true), 16);
    EXPECT_TRUE(sameDrawing(withLabel.calls, drawnBy(viewOf(usedPercent(100), false), 16).calls));
    EXPECT_FALSE(sameDrawing(drawnBy(viewOf(usedPercent(47), true), 16).calls,
                             drawnBy(viewOf(usedPercent(47), false), 16).calls));
}

TEST(TrayBarView, TheFigureHasAHaloForAnyPanel) {
    const struct {
        std::optional<Appearance> appearance;
        Rgba ink;
        Rgba halo;
    } cases[] = {
        {Appearance::light, {0.1, 0.1, 0.11}, {1, 1, 1, 0.45}},
        {Appearance::dark, {1, 1, 1}, {0, 0, 0, 0.4}},
        {std::nullopt, {0.1, 0.1, 0.11}, {1, 1, 1, 0.45}},
    };
    for (const auto& [appearance, ink, halo] : cases) {
        const auto texts = drawnBy(viewOf(usedPercent(47), true), 22, appearance).all<drawn::DrawText>();
        ASSERT_EQ(texts.size(), 9U);
        const Rect place{0, 0, 22, 14};
        EXPECT_EQ(texts.back().color, Color(ink)) << "the ink comes last";
        EXPECT_EQ(texts.back().rect, place);
        std::vector<Rect> places;
        for (std::size_t i = 0; i < 8; ++i) {
            EXPECT_EQ(texts[i].color, Color(halo));
            EXPECT_EQ(texts[i].text, "47%");
            EXPECT_EQ(texts[i].font, texts.back().font);
            places.push_back(texts[i].rect);
        }
        for (const double dx : {-1.0, 0.0, 1.0})
            for (const double dy : {-1.0, 0.0, 1.0})
                EXPECT_EQ(std::ranges::count(places, Rect{place.x + dx, place.y + dy, place.width, place.height}),
                          dx == 0 && dy == 0 ? 0 : 1);
    }
}

TEST(TrayBarView, TheUsedPartIsInProportion) {
    for (int side = smallestSide; side <= largestSide; ++side)
        for (const bool label : {false, true})
            for (const std::int64_t percent : {1, 3, 10, 25, 47, 50, 99, 100}) {
                const auto canvas = drawnBy(viewOf(usedPercent(percent), label), side);
                const Rect inside = capsule(canvas).inset(1, 1);
                const auto used = usedRect(canvas);
                ASSERT_TRUE(used) << side << " at " << percent;
                EXPECT_EQ(used->x, 1);
                EXPECT_EQ(used->y, inside.y);
                EXPECT_EQ(used->height, inside.height);
                const double smallest = side >= 33 ? std::round(side / 22.0) : 1; // seen also when scaled to 22 pixels
                EXPECT_NEAR(used->width, std::max((side - 2) * static_cast<double>(percent) / 100, smallest), 1e-9)
                    << side << " at " << percent;
            }
}

TEST(TrayBarView, NothingUsedLeavesTheTrackEmpty) {
    const std::optional<StorageSnapshot> cases[] = {std::nullopt, usedPercent(0), usedPercent(-5),
                                                    StorageSnapshot{"Disk", 0, 0, {}}};
    for (const auto& snapshot : cases) {
        const auto canvas = drawnBy(viewOf(snapshot, false), 22);
        EXPECT_FALSE(usedRect(canvas));
        const RoundedRect outer{{0, 5, 22, 12}, 6};
        const Rect inside{1, 6, 20, 10};
        EXPECT_TRUE(
            sameDrawing(canvas.calls, {drawn::Fill{outer, outline}, drawn::Save{}, drawn::Clip{RoundedRect{inside, 5}},
                                       drawn::Fill{inside, track}, drawn::Restore{}}));
    }
}

TEST(TrayBarView, AMarkEndsTheUsedPartUntilLessThanOnePixelIsLeft) {
    const struct {
        std::int64_t available; ///< of 40, in a capsule of 20 pixels inside: half a pixel each
        std::optional<double> x;
    } cases[] = {
        {39, 2},            // the minimum of one pixel: right after it
        {37, 2},            // 1.5 pixels: down to the whole pixel
        {36, 3},            //
        {20, 11},           //
        {3, 19},            // 18.5 pixels: one and a half are left
        {2, std::nullopt},  // exactly one pixel is left
        {0, std::nullopt},  // full
        {40, std::nullopt}, // nothing used
    };
    for (const auto& [available, x] : cases) {
        const auto fills = drawnBy(viewOf(StorageSnapshot{"Disk", 40, available, {}}, false), 22).all<drawn::Fill>();
        ASSERT_EQ(fills.size(), x ? 3U : 2U) << available;
        if (x) {
            EXPECT_EQ(fills.back(), (drawn::Fill{Rect{*x, 6, 1, 10}, endMark})) << available;
        }
    }
}

TEST(TrayBarView, EveryStyleIsPaintedIntoAnOutlinedCapsule) {
    const RoundedRect outer{{0, 5, 22, 12}, 6};
    const Rect inside{1, 6, 20, 10};
    const std::vector<Rgba> theme = {{1, 0, 0}, {0, 0, 1}};
    for (const auto& style : allBarStyles)
        for (const auto& sizing : allSegmentSizings)
            for (const auto appearance : {Appearance::light, Appearance::dark}) {
                VantryView view = viewOf(usedPercent(50), false);
                view.barStyle = style.value;
                view.segmentSizing = sizing.value;
                view.themeColors = theme;
                RecordingCanvas used;
                StoragePalette::drawUsedFill(used, {1, 6, 10, 10}, style.value, sizing.value, theme);
                Drawing expected = {drawn::Fill{outer, outline}, drawn::Save{}, drawn::Clip{RoundedRect{inside, 5}},
                                    drawn::Fill{inside, track}};
                expected.insert(expected.end(), used.calls.begin(), used.calls.end());
                expected.emplace_back(drawn::Fill{Rect{11, 6, 1, 10}, endMark});
                expected.emplace_back(drawn::Restore{});
                EXPECT_TRUE(sameDrawing(drawnBy(view, 22, appearance).calls, expected)) << style.rawValue;
            }
}

} // namespace vantry
