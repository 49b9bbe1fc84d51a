#include "tests/support/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantry {

// The other tests rely on this canvas.
TEST(RecordingCanvas, RecordsEveryCall) {
    const std::vector<GradientStop> stops = {{Rgba{1, 0, 0}, 0.0}, {DynamicColor{SystemColor::blue}, 1.0}};
    RecordingCanvas canvas;
    canvas.save();
    canvas.clip(Ellipse{{1, 2, 3, 4}});
    canvas.setBlendMode(BlendMode::screen);
    canvas.fill(RoundedRect{{1, 2, 3, 4}, 2}, Rgba{1, 0, 0});
    canvas.stroke(Rect{1, 2, 3, 4}, DynamicColor{SystemColor::label, 0.5}, 0.75);
    canvas.fillGradient({1, 2, 3, 4}, stops, GradientDirection::topToBottom);
    canvas.drawText("47%", {10.5, FontWeight::medium, true}, Rgba{0, 0, 0}, {5, 6, 7, 8});
    canvas.restore();
    const Drawing expected = {
        drawn::Save{},
        drawn::Clip{Ellipse{{1, 2, 3, 4}}},
        drawn::SetBlendMode{BlendMode::screen},
        drawn::Fill{RoundedRect{{1, 2, 3, 4}, 2}, Rgba{1, 0, 0}},
        drawn::Stroke{Rect{1, 2, 3, 4}, DynamicColor{SystemColor::label, 0.5}, 0.75},
        drawn::FillGradient{{1, 2, 3, 4}, stops, GradientDirection::topToBottom},
        drawn::DrawText{"47%", {10.5, FontWeight::medium, true}, Rgba{0, 0, 0}, {5, 6, 7, 8}},
        drawn::Restore{},
    };
    EXPECT_EQ(canvas.calls, expected);
    EXPECT_TRUE(sameDrawing(canvas.calls, expected));
    EXPECT_TRUE(sameDrawing(canvas.calls, expected, roundingOnly));
    ASSERT_EQ(canvas.all<drawn::Clip>().size(), 1U);
    EXPECT_EQ(canvas.all<drawn::Clip>()[0], (drawn::Clip{Ellipse{{1, 2, 3, 4}}}));
}

TEST(RecordingCanvas, ADrawingDiffersFromEveryOther) {
    const std::vector<GradientStop> stops = {{Rgba{1, 0, 0}, 0.0}, {Rgba{0, 0, 1}, 1.0}};
    const Drawing calls = {
        drawn::Save{},
        drawn::Restore{},
        drawn::Clip{Rect{1, 2, 3, 4}},
        drawn::Clip{Ellipse{{1, 2, 3, 4}}},
        drawn::Clip{RoundedRect{{1, 2, 3, 4}, 1}},
        drawn::Clip{RoundedRect{{1, 2, 3, 4}, 2}},
        drawn::SetBlendMode{BlendMode::screen},
        drawn::SetBlendMode{BlendMode::sourceOver},
        drawn::Fill{Rect{1, 2, 3, 4}, Rgba{1, 0, 0}},
        drawn::Fill{Rect{1, 2, 3, 5}, Rgba{1, 0, 0}},
        drawn::Fill{Rect{1, 2, 3, 4}, Rgba{1, 0, 0, 0.5}},
        drawn::Fill{Rect{1, 2, 3, 4}, DynamicColor{SystemColor::label}},
        drawn::Fill{Rect{1, 2, 3, 4}, DynamicColor{SystemColor::label, 0.5}},
        drawn::Fill{Rect{1, 2, 3, 4}, DynamicColor{SystemColor::red}},
        drawn::Stroke{Rect{1, 2, 3, 4}, Rgba{1, 0, 0}, 1},
        drawn::Stroke{Rect{1, 2, 3, 4}, Rgba{1, 0, 0}, 2},
        drawn::FillGradient{{1, 2, 3, 4}, stops, GradientDirection::leftToRight},
        drawn::FillGradient{{1, 2, 3, 4}, stops, GradientDirection::topToBottom},
        drawn::FillGradient{{1, 2, 3, 4}, {stops[0]}, GradientDirection::leftToRight},
        drawn::FillGradient{{1, 2, 3, 4}, {stops[1], stops[0]}, GradientDirection::leftToRight},
        drawn::DrawText{"1", {10}, Rgba{}, {1, 2, 3, 4}},
        drawn::DrawText{"2", {10}, Rgba{}, {1, 2, 3, 4}},
        drawn::DrawText{"1", {11}, Rgba{}, {1, 2, 3, 4}},
        drawn::DrawText{"1", {10, FontWeight::bold}, Rgba{}, {1, 2, 3, 4}},
        drawn::DrawText{"1", {10, FontWeight::regular, true}, Rgba{}, {1, 2, 3, 4}},
        drawn::DrawText{"1", {10}, Rgba{}, {0, 2, 3, 4}},
    };
    for (std::size_t i = 0; i < calls.size(); ++i)
        for (std::size_t j = 0; j < calls.size(); ++j)
            for (const double tolerance : {0.0, roundingOnly})
                EXPECT_EQ(sameDrawing({calls[i]}, {calls[j]}, tolerance), i == j) << i << " and " << j;
    EXPECT_FALSE(sameDrawing({calls[0]}, {}));
    EXPECT_FALSE(sameDrawing({}, {calls[0]}));
    EXPECT_FALSE(sameDrawing({calls[0], calls[1]}, {calls[1], calls[0]}));
    EXPECT_TRUE(sameDrawing({}, {}));
}

TEST(RecordingCanvas, MeasuresCharactersNotBytes) {
    const RecordingCanvas canvas;
    EXPECT_EQ(canvas.textWidth("47%", {10}), 18);
    EXPECT_EQ(canvas.textWidth("—%", {10}), 12);
    EXPECT_EQ(canvas.textWidth("", {10}), 0);
    EXPECT_EQ(canvas.boundingHeight({10}), 12.5);
}

} // namespace vantry
