// Checks the Core Graphics calls of the macOS canvas on systems without Core Graphics: a view drawn on the recording
// canvas and, through these calls, on a stand-in must give the same operations in the same order.

#include "shell/appkit/AppKitCanvas.h"
#include "rendering/SolidSwatchView.h"
#include "rendering/VantryView.h"
#include "tests/shell/appkit/RecordingCoreGraphics.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

Color resolved(const Color& color) {
    if (const auto* dynamic = std::get_if<DynamicColor>(&color)) {
        const Rgba value = colorOfRole(dynamic->role);
        return value.withAlpha(value.alpha * dynamic->alpha);
    }
    return color;
}

/// Replaces roles by their values, because Core Graphics does not know roles.
Drawing resolved(Drawing drawing) {
    for (DrawCall& call : drawing) {
        if (auto* fill = std::get_if<drawn::Fill>(&call))
            fill->color = resolved(fill->color);
        else if (auto* stroke = std::get_if<drawn::Stroke>(&call))
            stroke->color = resolved(stroke->color);
        else if (auto* text = std::get_if<drawn::DrawText>(&call))
            text->color = resolved(text->color);
        else if (auto* gradient = std::get_if<drawn::FillGradient>(&call))
            for (GradientStop& stop : gradient->stops)
                stop.color = resolved(stop.color);
    }
    return drawing;
}

template <class Draw>
void expectTheSamePicture(const std::string& name, Draw draw) {
    RecordingCanvas expected;
    draw(expected);
    const RecordingCoreGraphics coreGraphics;
    AppKitCanvas canvas(nullptr);
    draw(canvas);
    EXPECT_TRUE(sameDrawing(coreGraphics.calls(), resolved(expected.calls))) << name;
    EXPECT_EQ(coreGraphics.mistakes(), "") << name;
    EXPECT_EQ(coreGraphics.livingObjects(), 0) << name;
}

VantryView usedOf(std::int64_t used, std::int64_t total) {
    VantryView view;
    view.snapshot = StorageSnapshot{"Disk", total, total - used, {}};
    return view;
}

constexpr Rect area{2, 3, 40, 10};

} // namespace

TEST(AppKitCanvas, EveryOperationOnEveryShapeMakesItsCalls) {
    const Shape shapes[] = {area, RoundedRect{area, 4}, Ellipse{area}};
    for (const Shape& shape : shapes)
        expectTheSamePicture("shape " + std::to_string(shape.index()), [&](Canvas& canvas) {
            canvas.save();
            canvas.clip(shape);
            canvas.setBlendMode(BlendMode::screen);
            canvas.fill(shape, Rgba{0.1, 0.2, 0.3, 0.4});
            canvas.setBlendMode(BlendMode::sourceOver);
            canvas.stroke(shape, DynamicColor{SystemColor::label, 0.5}, 0.75);
            canvas.restore();
            canvas.fill(shape, DynamicColor{SystemColor::red});
        });
}

TEST(AppKitCanvas, AGradientRunsAcrossItsRectangleAndLeavesNoClipBehind) {
    const GradientStop stops[] = {{Rgba{1, 0, 0}, 0}, {DynamicColor{SystemColor::blue, 0.5}, 0.3}, {Rgba{0, 0, 1}, 1}};
    for (const auto direction : {GradientDirection::leftToRight, GradientDirection::topToBottom})
        expectTheSamePicture("gradient", [&](Canvas& canvas) {
            canvas.fillGradient(area, stops, direction);
            canvas.fill(area, Rgba{});
        });
}

TEST(AppKitCanvas, TextKeepsItsFontColourAndPlace) {
    const Font font{10.5, FontWeight::medium, true};
    expectTheSamePicture("text", [&](Canvas& canvas) {
        canvas.drawText("47%", font, DynamicColor{SystemColor::label, 0.5}, area);
        canvas.drawText("—%", font, Rgba{0, 0, 0, 1},
                        {0, 0, canvas.textWidth("—%", font), canvas.boundingHeight(font)});
    });
}

TEST(AppKitCanvas, LargeCornerRadiiAreReduced) {
    for (const Rect& rect : {Rect{0, 0, 1, 7}, Rect{0, 0, 7, 1}, Rect{0, 0, 0, 7}})
        expectTheSamePicture("corners", [&](Canvas& canvas) { canvas.fill(RoundedRect{rect, 3.5}, Rgba{}); });
}

TEST(AppKitCanvas, TheBarIsDrawnAsOnTheRecordingCanvas) {
    for (const auto& style : allBarStyles)
        for (const auto& sizing : allSegmentSizings)
            for (const auto appearance : {Appearance::light, Appearance::dark})
                for (const std::int64_t used : {0, 1, 470, 999, 1000})
                    for (const Size size : {Size{60, 22}, Size{94, 24}, Size{344, 16}, Size{10, 22}}) {
                        VantryView view = usedOf(used, 1000);
                        view.barStyle = style.value;
                        view.segmentSizing = sizing.value;
                        view.showsPercentageLabel = size.width == 94;
                        expectTheSamePicture(std::string(style.rawValue),
                                             [&](Canvas& canvas) { view.draw(canvas, size, appearance); });
                    }
}

TEST(AppKitCanvas, TheSwatchesAreDrawnAsOnTheRecordingCanvas) {
    for (const auto kind : {SolidSwatchView::Kind::used, SolidSwatchView::Kind::available})
        for (const auto& style : allBarStyles) {
            SolidSwatchView view(kind);
            view.barStyle = style.value;
            expectTheSamePicture(std::string(style.rawValue), [&](Canvas& canvas) {
                view.draw(canvas, SolidSwatchView::fixedSize, Appearance::light);
            });
        }
}

} // namespace vantry
