// Compares the bar of the macOS front end with that of the other front end's canvas. Both paint with Qt here.

#include "shell/appkit/BarView.h"
#include "shell/appkit/StatusItem.h"
#include "shell/qt/QtCanvas.h"
#include "tests/apple/AppKitFixture.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vantry::apple {

namespace {

class AppKitDrawing : public AppKitFixture {
protected:
    /// A bar with this much of the volume used, shown in the menu bar.
    static StatusItemContent content(BarStyle style, SegmentSizing sizing, double used) {
        StatusItemContent content;
        content.view.barStyle = style;
        content.view.segmentSizing = sizing;
        content.view.snapshot = StorageSnapshot{.volumeName = "Data",
                                                .totalBytes = 1'000'000'000'000,
                                                .availableBytes = static_cast<std::int64_t>((1 - used) * 1e12),
                                                .updatedAt = SystemTime(std::chrono::seconds(1'700'000'000))};
        return content;
    }

    /// The differences of colour components between the item's picture and the other canvas.
    struct Difference {
        double greatest = 0;
        double mean = 0;
    };
    static Difference difference(NSWindow* window, const VantryView& view, Appearance appearance) {
        const NSSize size = window.frame.size;
        QImage image(QSize(static_cast<int>(size.width), static_cast<int>(size.height)) * 2,
                     QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(2);
        CGContextRef picture = drawWindow(window);
        const Rgba background = colorAt(picture, 0, 0);
        image.fill(QColor::fromRgbF(static_cast<float>(background.red), static_cast<float>(background.green),
                                    static_cast<float>(background.blue)));
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            QtCanvas canvas(painter, appearance);
            view.draw(canvas, {size.width, size.height}, appearance);
        }
        Difference difference;
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y) {
                const Rgba ours = colorAt(picture, x / 2.0, y / 2.0);
                const QColor theirs = image.pixelColor(x, y);
                for (const double each :
                     {ours.red - theirs.redF(), ours.green - theirs.greenF(), ours.blue - theirs.blueF()}) {
                    difference.greatest = std::max(difference.greatest, std::abs(each));
                    difference.mean += std::abs(each) / (3.0 * image.width() * image.height());
                }
            }
        CGContextRelease(picture);
        return difference;
    }
};

} // namespace

// Edges may differ slightly, because the two clip differently.
TEST_F(AppKitDrawing, EveryBarLooksAsInTheOtherFrontEnd) {
    for (const BarStyle style :
         {BarStyle::storageGradient, BarStyle::macOSSegments, BarStyle::vividTheme, BarStyle::currentTheme})
        for (const SegmentSizing sizing : {SegmentSizing::equal, SegmentSizing::verifiedSnapshot})
            for (const double used : {0.0, 0.03, 0.6, 1.0})
                for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
                    @autoreleasepool {
                        StatusItem item([](std::optional<MouseEvent>) {});
                        const StatusItemContent shown = content(style, sizing, used);
                        item.setContent(shown);
                        settle();
                        setAppearance(item.button().window, appearance);
                        const auto [greatest, mean] = difference(item.button().window, shown.view, appearance);
                        EXPECT_LT(greatest, 0.1) << rawValue(style) << ' ' << rawValue(sizing) << ' ' << used;
                        EXPECT_LT(mean, 0.0005) << rawValue(style) << ' ' << rawValue(sizing) << ' ' << used;
                    }
                }
}

TEST_F(AppKitDrawing, ThePercentageIsBesideTheBar) {
    @autoreleasepool {
        StatusItem item([](std::optional<MouseEvent>) {});
        StatusItemContent shown = content(BarStyle::storageGradient, SegmentSizing::equal, 0.6);
        shown.length = 94;
        const auto inkBehindTheBar = [&] {
            item.setContent(shown);
            settle();
            CGContextRef picture = drawWindow(item.button().window);
            const Rgba background = colorAt(picture, 93, 0);
            int ink = 0;
            for (double x = 62; x < 93; x += 0.5)
                for (double y = 0; y < 24; y += 0.5)
                    ink += colorAt(picture, x, y).red < background.red - 0.3 ? 1 : 0;
            CGContextRelease(picture);
            return ink;
        };
        shown.view.showsPercentageLabel = true;
        EXPECT_GT(inkBehindTheBar(), 50);
        shown.view.showsPercentageLabel = false;
        shown.view.snapshot->availableBytes = shown.view.snapshot->totalBytes; // a bar without a colour
        EXPECT_EQ(inkBehindTheBar(), 0);
    }
}

} // namespace vantry::apple
