#include "rendering/VantryView.h"

#include "tests/support/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

namespace {

constexpr Rgba lightTrack{0.82, 0.824, 0.835};
constexpr Rgba darkTrack{0.282, 0.298, 0.31};
constexpr Rgba lightBorder{0, 0, 0, 0.1};
constexpr Rgba darkBorder{1, 1, 1, 0.1};

constexpr Size statusItem{60, 22};

StorageSnapshot snapshot(std::int64_t total, std::int64_t available) { return {"Disk", total, available, {}}; }

VantryView viewOf(std::optional<StorageSnapshot> shown) {
    VantryView view;
    view.snapshot = std::move(shown);
    return view;
}

RecordingCanvas drawnBy(const VantryView& view, Size bounds, std::optional<Appearance> appearance = Appearance::light) {
    RecordingCanvas canvas;
    view.draw(canvas, bounds, appearance);
    return canvas;
}

/// What stands inside the clip of the track, and whether there is one.
std::optional<Drawing> usedFillOf(const Drawing& calls) {
    for (std::size_t i = 0; i + 1 < calls.size(); ++i)
        if (std::holds_alternative<drawn::Save>(calls[i]) && std::holds_alternative<drawn::Clip>(calls[i + 1])) {
            int depth = 1;
            for (std::size_t end = i + 2; end < calls.size(); ++end) {
                depth += std::holds_alternative<drawn::Save>(calls[end]) ? 1 : 0;
                depth -= std::holds_alternative<drawn::Restore>(calls[end]) ? 1 : 0;
                if (depth == 0)
                    return Drawing(calls.begin() + static_cast<std::ptrdiff_t>(i) + 2,
                                   calls.begin() + static_cast<std::ptrdiff_t>(end));
            }
        }
    return std::nullopt;
}

/// The rectangle of the used part of a bar whose style is one gradient.
Rect usedRect(const VantryView& view, Size bounds) {
    const auto fill = usedFillOf(drawnBy(view, bounds).calls);
    return fill && fill->size() == 1 ? std::get<drawn::FillGradient>(fill->front()).rect : Rect{};
}

std::optional<Rect> paintedEndMark(const VantryView& view, Size bounds) {
    for (const auto& fill : drawnBy(view, bounds).all<drawn::Fill>())
        if (fill.color == Color(DynamicColor{SystemColor::windowBackground, 0.4}))
            return std::get<Rect>(fill.shape);
    return std::nullopt;
}

} // namespace

TEST(VantryView, StartsWithItsInitialValues) {
    const VantryView view;
    EXPECT_EQ(view.snapshot, std::nullopt);
    EXPECT_EQ(view.barHeight, 7.0);
    EXPECT_EQ(view.horizontalInset, 3.0);
    EXPECT_FALSE(view.showsPercentageLabel);
    EXPECT_EQ(view.barStyle, BarStyle::storageGradient);
    EXPECT_EQ(view.segmentSizing, SegmentSizing::verifiedSnapshot);
    EXPECT_EQ(view.themeColors,
              std::vector<Rgba>(StoragePalette::gradientColors.begin(), StoragePalette::gradientColors.end()));
    EXPECT_TRUE(view.exposesAccessibility);
}

TEST(VantryView, DiffersByEachOfItsProperties) {
    // Whoever shows it draws again when the value differs.
    const VantryView view;
    VantryView changed[8];
    changed[0].snapshot = snapshot(100, 50);
    changed[1].barHeight = 8;
    changed[2].horizontalInset = 0;
    changed[3].showsPercentageLabel = true;
    changed[4].barStyle = BarStyle::vividTheme;
    changed[5].segmentSizing = SegmentSizing::equal;
    changed[6].themeColors.pop_back();
    changed[7].exposesAccessibility = false;
    for (const VantryView& other : changed)
        EXPECT_FALSE(other == view) << &other - changed;
    EXPECT_TRUE(view == VantryView());
}

TEST(VantryView, TheBarFillsTheWidthWithoutInsetsAndLabel) {
    const struct {
        double inset;
        double barHeight;
        bool label;
        Size bounds;
        Rect bar;
    } cases[] = {
        {3, 7, false, {60, 22}, {3, 7, 54, 7}},     // the half point is dropped
        {3, 7, true, {60, 22}, {3, 7, 19, 7}},      // 60 - 6 - 35
        {3, 7, true, {94, 22}, {3, 7, 53, 7}},      //
        {3, 7, false, {60, 21}, {3, 7, 54, 7}},     //
        {3, 7, false, {60, 23}, {3, 8, 54, 7}},     //
        {0, 10, false, {300, 10}, {0, 0, 300, 10}}, //
        {0, 10, false, {300, 13}, {0, 1, 300, 10}}, //
        {2.5, 6.5, false, {60.5, 22}, {2.5, 7, 55.5, 6.5}},
        {3, 7, false, {60, 4}, {3, -2, 54, 7}},   // higher than its view: down to the next whole point
        {3, 7, true, {42, 22}, {3, 7, 1, 7}},     // exactly one point
        {3, 7, true, {42.5, 22}, {3, 7, 1.5, 7}}, //
        {3, 7, true, {41.5, 22}, {3, 7, 1, 7}},   // never less
        {3, 7, true, {20, 22}, {3, 7, 1, 7}},     //
        {3, 7, false, {6.5, 22}, {3, 7, 1, 7}},   //
        {3, 7, false, {0, 0}, {3, -4, 1, 7}},     //
    };
    for (const auto& [inset, barHeight, label, bounds, bar] : cases) {
        VantryView view;
        view.horizontalInset = inset;
        view.barHeight = barHeight;
        view.showsPercentageLabel = label;
        const auto canvas = drawnBy(view, bounds);
        const RoundedRect track{bar, barHeight / 2};
        EXPECT_EQ(canvas.calls.at(0), DrawCall(drawn::Fill{track, lightTrack})) << drawingText(canvas.calls);
        EXPECT_EQ(canvas.calls.at(1), DrawCall(drawn::Stroke{track, lightBorder, 0.75})) << drawingText(canvas.calls);
    }
}

TEST(VantryView, EveryStyleIsPaintedIntoTheClippedTrackAndFramed) {
    const Rect bar{3, 7, 54, 7};
    const RoundedRect track{bar, 3.5};
    const std::vector<Rgba> theme = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const struct {
        std::optional<Appearance> appearance;
        Rgba track;
        Rgba border;
    } appearances[] = {
        {Appearance::light, lightTrack, lightBorder},
        {Appearance::dark, darkTrack, darkBorder},
        {std::nullopt, lightTrack, lightBorder},
    };
    for (const auto& style : allBarStyles)
        for (const auto& sizing : allSegmentSizings)
            for (const auto& [appearance, trackColor, borderColor] : appearances) {
                VantryView view = viewOf(snapshot(100, 25));
                view.barStyle = style.value;
                view.segmentSizing = sizing.value;
                view.themeColors = theme;

                Drawing expected = {drawn::Fill{track, trackColor}, drawn::Save{}, drawn::Clip{track}};
                RecordingCanvas used;
                StoragePalette::drawUsedFill(used, {3, 7, 40.5, 7}, style.value, sizing.value, theme);
                expected.insert(expected.end(), used.calls.begin(), used.calls.end());
                expected.emplace_back(drawn::Restore{});
                // Outside the clip: a straight cut.
                expected.emplace_back(drawn::Fill{Rect{43, 7, 1, 7}, DynamicColor{SystemColor::windowBackground, 0.4}});
                expected.emplace_back(drawn::Stroke{track, borderColor, 0.75});
                EXPECT_TRUE(sameDrawing(drawnBy(view, statusItem, appearance).calls, expected))
                    << style.rawValue << " " << sizing.rawValue;
            }
}

TEST(VantryView, TheUsedPartIsInProportionAndAtLeastOnePointWide) {
    const struct {
        std::int64_t total;
        std::int64_t available;
        double width;
    } cases[] = {
        {1000, 999, 1}, // 0.04 points
        {1000, 976, 1}, // 0.96
        {1000, 975, 1}, //
        {1000, 974, 1.04},
        {1000, 750, 10},
        {1000, 500, 20},
        {1000, 1, 39.96},
        {1000, 0, 40},
        {1000, -1, 40}, // never wider than the bar
        {1'000'000'000'000, 999'999'999'999, 1},
        {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(), 40},
    };
    for (const auto& [total, available, width] : cases) {
        const Rect used = usedRect(viewOf(snapshot(total, available)), {46, 22});
        EXPECT_EQ(used.x, 3);
        EXPECT_EQ(used.y, 7);
        EXPECT_EQ(used.height, 7);
        EXPECT_NEAR(used.width, width, roundingOnly * 100) << total << " " << available;
    }
}

TEST(VantryView, TheMinimumOfTheUsedPartIsExact) {
    EXPECT_EQ(usedRect(viewOf(snapshot(1000, 999)), {46, 22}).width, 1.0);
    EXPECT_EQ(usedRect(viewOf(snapshot(1000, 0)), {46, 22}).width, 40.0);
    // A bar that is no wider than the minimum.
    EXPECT_EQ(usedRect(viewOf(snapshot(1000, 999)), {0, 22}).width, 1.0);
    EXPECT_EQ(usedRect(viewOf(snapshot(1000, 0)), {0, 22}).width, 1.0);
}

TEST(VantryView, AnEndMarkFollowsTheUsedPartUntilLessThanOnePointIsLeft) {
    const struct {
        std::int64_t available; ///< of 64, on a bar of 32 points: half a point each
        std::optional<double> x;
    } cases[] = {
        {63, 4},            // the minimum of one point: right after it
        {62, 4},            // 1 point
        {61, 4},            // 1.5 points: down to the whole point
        {60, 5},            //
        {32, 19},           //
        {31, 19},           //
        {3, 33},            // 30.5 points: one and a half are left
        {2, std::nullopt},  // exactly one point is left
        {1, std::nullopt},  //
        {0, std::nullopt},  // full
        {-1, std::nullopt}, //
        {64, std::nullopt}, // nothing used
    };
    for (const auto& [available, x] : cases) {
        const auto mark = paintedEndMark(viewOf(snapshot(64, available)), {38, 22});
        ASSERT_EQ(mark.has_value(), x.has_value()) << available;
        if (mark) {
            EXPECT_EQ(*mark, (Rect{*x, 7, 1, 7})) << available;
        }
    }
}

TEST(VantryView, TheEndMarkFollowsTheMinimumOnABarOfFortyPoints) {
    EXPECT_EQ(paintedEndMark(viewOf(snapshot(1000, 999)), {46, 22}), (Rect{4, 7, 1, 7}));
}

TEST(VantryView, TheEndMarkIsRoundedDownWithTheInset) {
    VantryView view = viewOf(snapshot(64, 32));
    view.horizontalInset = 2.75;
    // 2.75 + 16.25 = 19
    EXPECT_EQ(paintedEndMark(view, {38, 22}), (Rect{19, 7, 1, 7}));
    view.horizontalInset = 2.5;
    // 2.5 + 16.5 = 19
    EXPECT_EQ(paintedEndMark(view, {38, 22}), (Rect{19, 7, 1, 7}));
    view.horizontalInset = 0.25;
    // 0.25 + 18.5 = 18.75 of a bar of 37 points
    EXPECT_EQ(paintedEndMark(view, {37.5, 22}), (Rect{18, 7, 1, 7}));
}

TEST(VantryView, AFullDiskPaintsTheWholeTrackWithoutAnEndMark) {
    const Rect bar{3, 7, 54, 7};
    const RoundedRect track{bar, 3.5};
    RecordingCanvas used;
    StoragePalette::drawUsedFill(used, bar, BarStyle::storageGradient, SegmentSizing::verifiedSnapshot, {});
    EXPECT_TRUE(sameDrawing(drawnBy(viewOf(snapshot(100, 0)), statusItem).calls,
                            {drawn::Fill{track, lightTrack}, drawn::Save{}, drawn::Clip{track}, used.calls.at(0),
                             drawn::Restore{}, drawn::Stroke{track, lightBorder, 0.75}}));
}

TEST(VantryView, WithNothingUsedThereIsTheEmptyTrackAndTheBorder) {
    const RoundedRect track{{3, 7, 54, 7}, 3.5};
    const std::optional<StorageSnapshot> cases[] = {
        std::nullopt, snapshot(100, 100), snapshot(100, 101), snapshot(0, 0), snapshot(-5, -10), snapshot(0, -10),
    };
    for (const auto& shown : cases) {
        EXPECT_TRUE(sameDrawing(drawnBy(viewOf(shown), statusItem, Appearance::light).calls,
                                {drawn::Fill{track, lightTrack}, drawn::Stroke{track, lightBorder, 0.75}}));
        EXPECT_TRUE(sameDrawing(drawnBy(viewOf(shown), statusItem, Appearance::dark).calls,
                                {drawn::Fill{track, darkTrack}, drawn::Stroke{track, darkBorder, 0.75}}));
    }
}

TEST(VantryView, TheLabelStandsAfterTheBar) {
    // The font of the recording canvas is 13.125 points high at 10.5.
    const struct {
        Size bounds;
        double inset;
        Rect rect;
    } cases[] = {
        {{60, 22}, 3, {27, 3, 30, 15.125}}, {{94, 22}, 3, {61, 3, 30, 15.125}},  {{94, 24}, 3, {61, 4, 30, 15.125}},
        {{94, 24}, 0, {64, 4, 30, 15.125}}, {{94, 10}, 3, {61, -3, 30, 15.125}}, // a view lower than the font
        {{30, 22}, 3, {9, 3, 18, 15.125}},                                       // beside a bar of one point
        {{12, 22}, 3, {9, 3, 0, 15.125}},                                        // never less than nothing
        {{8, 22}, 3, {9, 3, 0, 15.125}},                                         //
    };
    for (const auto& [bounds, inset, rect] : cases)
        for (const auto appearance : {Appearance::light, Appearance::dark}) {
            VantryView view = viewOf(snapshot(100, 53));
            view.horizontalInset = inset;
            view.showsPercentageLabel = true;
            const auto canvas = drawnBy(view, bounds, appearance);
            EXPECT_EQ(canvas.all<drawn::DrawText>().size(), 1U);
            EXPECT_TRUE(sameDrawing(
                {canvas.calls.back()},
                {drawn::DrawText{"47%", {10.5, FontWeight::medium, true}, DynamicColor{SystemColor::label, 1}, rect}}))
                << bounds.width << " x " << bounds.height;
        }
}

TEST(VantryView, WithoutTheLabelThereIsNoText) {
    for (const auto& shown : {std::optional<StorageSnapshot>(), std::optional(snapshot(100, 53))})
        EXPECT_TRUE(drawnBy(viewOf(shown), statusItem).all<drawn::DrawText>().empty());
}

TEST(VantryView, ThePercentageIsRoundedHalvesAwayFromZero) {
    const struct {
        std::int64_t total;
        std::int64_t available;
        const char* percentage;
    } cases[] = {
        {100, 53, "47"},
        {1000, 996, "0"}, // 0.4
        {200, 199, "1"},  // 0.5
        {200, 197, "2"},  // 1.5
        {200, 195, "3"},  // 2.5
        {1000, 994, "1"}, // 0.6
        {8, 7, "13"},     // 12.5
        {8, 5, "38"},     // 37.5
        {1000, 6, "99"},  // 99.4
        {200, 1, "100"},  // 99.5
        {100, 0, "100"},
        {100, -100, "100"},
        {100, 100, "0"},
        {100, 200, "0"},
        {0, 0, "0"},
        {-100, -200, "0"},
        {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(), "100"},
        {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::max(), "0"},
    };
    for (const auto& [total, available, percentage] : cases) {
        VantryView view = viewOf(snapshot(total, available));
        view.showsPercentageLabel = true;
        const std::string number = percentage;
        EXPECT_EQ(view.percentageText(), number + "%") << total << " " << available;
        EXPECT_EQ(drawnBy(view, statusItem).all<drawn::DrawText>().at(0).text, number + "%");
        EXPECT_EQ(view.accessibility().value, number + " percent");
    }
}

TEST(VantryView, WithoutASnapshotTheLabelIsADash) {
    VantryView view;
    view.showsPercentageLabel = true;
    EXPECT_EQ(view.percentageText(), "\u2014%");
    const auto texts = drawnBy(view, statusItem).all<drawn::DrawText>();
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].text, "\u2014%");
}

TEST(VantryView, TellsAScreenReaderHowMuchIsUsed) {
    const auto role = AccessibilityRole::progressIndicator;
    EXPECT_EQ(viewOf(snapshot(100, 53)).accessibility(),
              (AccessibilityContent{true, role, "Storage used", "47 percent"}));
    EXPECT_EQ(viewOf(snapshot(100, 100)).accessibility(),
              (AccessibilityContent{true, role, "Storage used", "0 percent"}));
    EXPECT_EQ(viewOf(std::nullopt).accessibility(), (AccessibilityContent{true, role, "Storage", "Loading"}));
}

TEST(VantryView, TellsAScreenReaderNothingWhenItsOwnerDoesSo) {
    for (const auto& shown : {std::optional<StorageSnapshot>(), std::optional(snapshot(100, 53))}) {
        VantryView view = viewOf(shown);
        view.exposesAccessibility = false;
        EXPECT_EQ(view.accessibility(), AccessibilityContent{});
        EXPECT_FALSE(view.accessibility().isElement);
    }
}

} // namespace vantry
