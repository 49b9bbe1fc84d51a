#include "rendering/TrayBarView.h"
#include "rendering/VantryView.h"
#include "shell/qt/QtCanvas.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <string>

namespace vantry {

namespace {

constexpr double highDensity = 2;
constexpr Size itemSize{60, 24};
constexpr Size itemWithPercentageSize{94, 24};
constexpr Size popoverBarSize{380, 16};
constexpr double traySide = 22;

StorageSnapshot twoThirdsFull() {
    return {
        .volumeName = "Disk", .totalBytes = 3'000'000'000'000, .availableBytes = 1'000'000'000'000, .updatedAt = {}};
}

VantryView itemBar(BarStyle style, bool percentage = false) {
    return {.snapshot = twoThirdsFull(),
            .barHeight = 7,
            .horizontalInset = 5,
            .showsPercentageLabel = percentage,
            .barStyle = style};
}

VantryView popoverBar(BarStyle style) {
    return {.snapshot = twoThirdsFull(), .barHeight = 14, .horizontalInset = 0, .barStyle = style};
}

/// One round is what a widget does to show the bar: clear the ground, draw, finish.
template <class Draw>
void paintRounds(benchmark::State& state, Size size, double scale, const Draw& draw) {
    QImage image(static_cast<int>(size.width * scale), static_cast<int>(size.height * scale),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    for ([[maybe_unused]] const auto round : state) {
        image.fill(Qt::transparent);
        QPainter painter(&image);
        QtCanvas canvas(painter, Appearance::light);
        draw(canvas);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
}

void drawBar(benchmark::State& state, const VantryView& bar, Size size) {
    paintRounds(state, size, highDensity, [&](Canvas& canvas) { bar.draw(canvas, size, Appearance::light); });
}

void drawTrayPicture(benchmark::State& state, const VantryView& bar) {
    paintRounds(state, {traySide, traySide}, 1,
                [&](Canvas& canvas) { TrayBarView::draw(canvas, bar, traySide, Appearance::light); });
}

void registerBenchmarks() {
    for (const auto& row : allBarStyles) {
        const auto style = row.value;
        const auto add = [&](const char* what, const auto& function) {
            benchmark::RegisterBenchmark((what + ("/" + std::string(row.rawValue))).c_str(), function)
                ->Unit(benchmark::kMicrosecond);
        };
        add("item", [style](auto& state) { drawBar(state, itemBar(style), itemSize); });
        add("itemWithPercentage",
            [style](auto& state) { drawBar(state, itemBar(style, true), itemWithPercentageSize); });
        add("popover", [style](auto& state) { drawBar(state, popoverBar(style), popoverBarSize); });
        add("tray", [style](auto& state) { drawTrayPicture(state, itemBar(style)); });
        add("trayWithPercentage", [style](auto& state) { drawTrayPicture(state, itemBar(style, true)); });
    }
}

} // namespace

} // namespace vantry

int main(int argumentCount, char** argumentValues) {
    benchmark::Initialize(&argumentCount, argumentValues);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, argumentValues))
        return 1;
    qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts need an application, drawing needs no display
    const QGuiApplication application(argumentCount, argumentValues);
    vantry::registerBenchmarks();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
