#include "shell/qt/TrayItem.h"

#include "rendering/TrayBarView.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSize>
#include <algorithm>
#include <array>

namespace vantry {

namespace {

constexpr std::array<int, 6> sides{16, 22, 24, 32, 48, 64};

VantryView usedPercent(std::int64_t percent, BarStyle style = BarStyle::storageGradient, bool label = false) {
    VantryView view;
    view.snapshot = StorageSnapshot{"Disk", 100, 100 - percent, {}};
    view.barStyle = style;
    view.showsPercentageLabel = label;
    view.themeColors = {{0.9, 0.1, 0.1}, {0.1, 0.1, 0.9}};
    return view;
}

QImage pictureOf(const VantryView& view, int side, Appearance appearance = Appearance::light) {
    return trayIcon(view, appearance).pixmap(QSize(side, side)).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How many pixels differ clearly.
int pixelDifferences(const QImage& one, const QImage& other) {
    int count = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            count += isNear(one.pixelColor(x, y), other.pixelColor(x, y), 24) ? 0 : 1;
    return count;
}

} // namespace

TEST(TrayIcon, IsDrawnForEverySizeThatTraysAskFor) {
    const QIcon icon = trayIcon(usedPercent(47), Appearance::light);
    QList<QSize> expected;
    for (const int side : sides)
        expected.append(QSize(side, side));
    QList<QSize> available = icon.availableSizes();
    std::ranges::sort(available, {}, &QSize::width);
    EXPECT_EQ(available, expected);
    for (const int side : sides)
        EXPECT_EQ(icon.pixmap(QSize(side, side)).size(), QSize(side, side));
}

TEST(TrayIcon, ShowsHowFullTheVolumeIs) {
    for (const int side : sides) {
        int reached = -1; // the column where the colours end
        for (const int percent : {5, 25, 50, 75, 100}) {
            const QImage used = pictureOf(usedPercent(percent), side);
            const QImage empty = pictureOf(usedPercent(0), side);
            int last = -1;
            for (int x = 0; x < side; ++x)
                if (!isNear(used.pixelColor(x, side / 2), empty.pixelColor(x, side / 2), 24))
                    last = x;
            EXPECT_GT(last, reached) << percent << " at " << side;
            reached = last;
        }
    }
}

TEST(TrayIcon, DiffersBetweenTheStyles) {
    for (const int side : sides)
        for (const bool label : {false, true})
            for (const auto& one : allBarStyles)
                for (const auto& other : allBarStyles) {
                    const int different = pixelDifferences(pictureOf(usedPercent(60, one.value, label), side),
                                                           pictureOf(usedPercent(60, other.value, label), side));
                    if (one.value == other.value) {
                        EXPECT_EQ(different, 0);
                    } else {
                        EXPECT_GT(different, side) << one.rawValue << " and " << other.rawValue << " at " << side;
                    }
                }
}

TEST(TrayIcon, ShowsThePercentageWhereItFits) {
    for (const int side : sides) {
        // One more digit changes the picture, but hardly the bar.
        EXPECT_GT(pixelDifferences(pictureOf(usedPercent(47, BarStyle::storageGradient, true), side),
                                   pictureOf(usedPercent(47, BarStyle::storageGradient, false), side)),
                  side)
            << side;
        for (const auto appearance : {Appearance::light, Appearance::dark}) {
            const QImage picture = pictureOf(usedPercent(47, BarStyle::storageGradient, true), side, appearance);
            int ink = 0;
            for (int y = 0; y < side / 2; ++y)
                for (int x = 0; x < side; ++x) {
                    const QColor pixel = picture.pixelColor(x, y);
                    const bool isInk =
                        appearance == Appearance::dark ? pixel.lightness() > 200 : pixel.lightness() < 60;
                    ink += pixel.alpha() > 128 && isInk ? 1 : 0;
                }
            EXPECT_GT(ink, side / 2) << side;
        }
    }
}

TEST(TrayIcon, StandsOutFromALightAndFromADarkPanel) {
    for (const int side : sides)
        for (const int panel : {0, 24, 235, 255})
            for (const auto appearance : {Appearance::light, Appearance::dark})
                for (const int percent : {0, 50, 100}) {
                    QImage shown(side, side, QImage::Format_ARGB32_Premultiplied);
                    shown.fill(QColor(panel, panel, panel));
                    QPainter(&shown).drawImage(0, 0, pictureOf(usedPercent(percent), side, appearance));
                    int distinct = 0;
                    for (int x = 0; x < side; ++x)
                        distinct += isNear(shown.pixelColor(x, side / 2), QColor(panel, panel, panel), 16) ? 0 : 1;
                    EXPECT_GT(distinct, side / 2) << side << " on " << panel << " at " << percent;
                }
}

TEST(TrayIcon, TheSquareCutsNothingOffTheFigure) {
    constexpr int margin = 10;
    for (const int side : sides)
        for (const int percent : {0, 7, 47, 88, 100}) {
            const VantryView view = usedPercent(percent, BarStyle::storageGradient, true);
            Picture picture({side + 2.0 * margin, side + 2.0 * margin}, 1, Qt::transparent);
            picture.paint(Appearance::light, QPointF(margin, margin),
                          [&](Canvas& canvas) { TrayBarView::draw(canvas, view, side, Appearance::light); });
            const QRect square(margin, margin, side, side);
            const QRect withHalo = square.adjusted(-1, -1, 1, 1);
            for (int y = 0; y < picture.height(); ++y)
                for (int x = 0; x < picture.width(); ++x) {
                    const QColor pixel = picture.at(x, y);
                    if (!withHalo.contains(x, y)) {
                        EXPECT_EQ(pixel.alpha(), 0) << percent << " in " << side << " at " << x << " " << y;
                    } else if (!square.contains(x, y) && pixel.alpha() > 0) {
                        EXPECT_GT(pixel.lightness(), 240) << "ink of " << percent << " outside of " << side;
                    }
                }
        }
}

TEST(TrayIcon, IsTransparentAroundTheBar) {
    for (const int side : sides) {
        const QImage picture = pictureOf(usedPercent(50), side);
        for (const int y : {0, side - 1})
            for (int x = 0; x < side; ++x)
                EXPECT_EQ(picture.pixelColor(x, y).alpha(), 0) << x << " " << y;
        EXPECT_GT(picture.pixelColor(side / 2, side / 2).alpha(), 200);
    }
}

} // namespace vantry
