// Tests the bar and its swatches as pixels, for what a list of calls does not show, such as the direction of a
// gradient.

#include "rendering/SolidSwatchView.h"
#include "rendering/VantryView.h"
#include "shell/qt/QtConversions.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

#include <array>

namespace vantry {

namespace {

constexpr std::array<double, 2> viewScales{1, 2};

VantryView usedOf(std::int64_t used, std::int64_t total) {
    VantryView view;
    view.snapshot = StorageSnapshot{"Disk", total, total - used, {}};
    return view;
}

template <class View>
Picture pictureOf(const View& view, Size size, double scale, Appearance appearance = Appearance::light,
                  const QColor& background = Qt::transparent) {
    Picture picture(size, scale, background);
    picture.paint(appearance, [&](Canvas& canvas) { view.draw(canvas, size, appearance); });
    return picture;
}

QColor opaque(const Rgba& color) { return qColor(color, Appearance::light); }

const QColor lightTrack = opaque({0.82, 0.824, 0.835});
const QColor darkTrack = opaque({0.282, 0.298, 0.31});

} // namespace

TEST(BarPicture, TheColoursRunFromTheFirstOnTheLeftToTheLastOnTheRight) {
    const struct {
        BarStyle style;
        Rgba first;
        Rgba last;
    } cases[] = {
        {BarStyle::storageGradient, {0.922, 0.337, 0.31}, {0.302, 0.616, 0.792}},
        {BarStyle::vividTheme, {0.18, 0.34, 0.72}, {0.98, 0.49, 0.2}},
        {BarStyle::macOSSegments, {1, 59 / 255.0, 48 / 255.0}, {0.39, 0.398, 0.41}},
    };
    for (const double scale : viewScales)
        for (const auto& [style, first, last] : cases) {
            VantryView view = usedOf(100, 100);
            view.barStyle = style;
            const auto picture = pictureOf(view, {106, 22}, scale); // a bar of 100 points
            const int middle = static_cast<int>(10 * scale);
            EXPECT_TRUE(isNear(picture.at(static_cast<int>(4 * scale), middle), opaque(first), 12));
            EXPECT_TRUE(isNear(picture.at(static_cast<int>(102 * scale) - 1, middle), opaque(last), 12));
        }
}

TEST(BarPicture, TheSheenIsBrightestInTheMiddleOfTheHeight) {
    VantryView view = usedOf(100, 100);
    view.barStyle = BarStyle::currentTheme;
    view.themeColors = {{0.2, 0.2, 0.2}, {0.2, 0.2, 0.2}};
    view.barHeight = 20;
    for (const double scale : viewScales) {
        const auto picture = pictureOf(view, {60, 20}, scale);
        const int x = picture.width() / 2;
        const int top = picture.at(x, static_cast<int>(1 * scale)).red();
        const int middle = picture.at(x, static_cast<int>(10 * scale)).red();
        const int bottom = picture.at(x, static_cast<int>(19 * scale) - 1).red();
        EXPECT_NEAR(top, bottom, 3);
        EXPECT_GE(top, 49) << "the theme's own colour at least";
        EXPECT_LE(top, 55);
        // 0.2, screened with 0.344 at 0.22, screened with white at 0.09
        EXPECT_NEAR(middle, 255 * (1 - 0.8 * (1 - 0.22 * 0.344) * 0.91), 4);
    }
}

TEST(BarPicture, TheTrackIsACapsuleWhoseCornersStayUntouched) {
    for (const double scale : viewScales)
        for (const bool full : {false, true}) {
            const auto picture = pictureOf(usedOf(full ? 100 : 0, 100), {60, 22}, scale);
            const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
            // The border reaches 0.375 points beyond the track.
            for (const int x : {pixel(3), pixel(57) - 1})
                for (const int y : {pixel(7), pixel(14) - 1})
                    EXPECT_LT(picture.at(x, y).alpha(), 90) << x << " " << y;
            for (const int y : {0, pixel(6) - 1, pixel(15), pixel(22) - 1})
                for (int x = 0; x < picture.width(); ++x)
                    EXPECT_EQ(picture.at(x, y).alpha(), 0) << x << " " << y;
            EXPECT_EQ(picture.at(pixel(30), pixel(10)).alpha(), 255);
        }
}

TEST(BarPicture, TheUsedPartEndsAtItsDevicePixel) {
    // 20.5 points of a bar of 40 that begins at 3, in black; the end mark covers the point that the used part ends in.
    VantryView view = usedOf(41, 80);
    view.barStyle = BarStyle::currentTheme;
    view.themeColors = {{0, 0, 0}, {0, 0, 0}};
    view.barHeight = 2; // too low for a sheen
    const double mark = 0.4 * 236;
    const double track = lightTrack.red();
    const auto redAt = [&](const Picture& picture, int x) { return picture.at(x, picture.height() / 2 - 1).red(); };

    const auto coarse = pictureOf(view, {46, 22}, 1);
    const double border = 1 - 0.1 * 0.375; // of the border that lies on each of the two rows
    EXPECT_NEAR(redAt(coarse, 22), 0, 2);
    EXPECT_NEAR(redAt(coarse, 23), (0.6 * track / 2 + mark) * border, 2);
    EXPECT_NEAR(redAt(coarse, 24), track * border, 2);

    const auto fine = pictureOf(view, {46, 22}, 2);
    EXPECT_NEAR(redAt(fine, 45), 0, 2);
    EXPECT_NEAR(redAt(fine, 46), mark, 2);
    EXPECT_NEAR(redAt(fine, 47), 0.6 * track + mark, 2);
    EXPECT_NEAR(redAt(fine, 48), track, 2);
}

TEST(BarPicture, TheUsedPartEndsAtAWholePointWhereItsWidthIsWhole) {
    for (const double scale : viewScales) {
        VantryView view = usedOf(50, 100); // 20 points of 40
        view.barStyle = BarStyle::currentTheme;
        view.themeColors = {{0, 0, 0}, {0, 0, 0}};
        view.barHeight = 9;
        const auto picture = pictureOf(view, {46, 22}, scale);
        const int y = static_cast<int>(7 * scale); // in the upper part, where the sheen is faint
        const int boundary = static_cast<int>(23 * scale);
        const int afterMark = static_cast<int>(24 * scale);
        EXPECT_LT(picture.at(boundary - 1, y).red(), 40);
        EXPECT_NEAR(picture.at(boundary, y).red(), 0.6 * lightTrack.red() + 0.4 * 236, 4);
        EXPECT_NEAR(picture.at(afterMark - 1, y).red(), 0.6 * lightTrack.red() + 0.4 * 236, 4);
        EXPECT_TRUE(isNear(picture.at(afterMark, y), lightTrack));
    }
}

TEST(BarPicture, TheTrackFollowsTheAppearance) {
    for (const double scale : viewScales) {
        const VantryView view = usedOf(10, 100);
        const auto at = [&](Appearance appearance) {
            return pictureOf(view, {60, 22}, scale, appearance)
                .at(static_cast<int>(40 * scale), static_cast<int>(10 * scale));
        };
        EXPECT_TRUE(isNear(at(Appearance::light), lightTrack));
        EXPECT_TRUE(isNear(at(Appearance::dark), darkTrack));
    }
}

TEST(BarPicture, TheSegmentsFollowTheAppearance) {
    VantryView view = usedOf(100, 100);
    view.barStyle = BarStyle::macOSSegments;
    view.segmentSizing = SegmentSizing::equal;
    const Size size{6 + 110, 22}; // ten points a segment
    const struct {
        int segment;
        QColor light;
        QColor dark;
    } cases[] = {
        {0, {255, 59, 48}, {255, 69, 58}},     {1, {255, 149, 0}, {255, 159, 10}},   {2, {255, 204, 0}, {255, 214, 10}},
        {3, {40, 205, 65}, {50, 215, 75}},     {4, {89, 173, 196}, {106, 196, 220}}, {5, {0, 122, 255}, {10, 132, 255}},
        {6, {255, 45, 85}, {255, 55, 95}},     {7, {85, 190, 240}, {90, 200, 245}},  {8, {0, 199, 190}, {99, 230, 226}},
        {9, {142, 142, 147}, {152, 152, 157}}, {10, {99, 101, 105}, {99, 101, 105}},
    };
    for (const double scale : viewScales) {
        const auto light = pictureOf(view, size, scale, Appearance::light);
        const auto dark = pictureOf(view, size, scale, Appearance::dark);
        for (const auto& [segment, lightColor, darkColor] : cases) {
            const int x = static_cast<int>((3 + 10 * segment + 5) * scale);
            const int y = static_cast<int>(10 * scale);
            EXPECT_TRUE(isNear(light.at(x, y), lightColor)) << segment;
            EXPECT_TRUE(isNear(dark.at(x, y), darkColor)) << segment;
        }
    }
}

TEST(BarPicture, TheLabelFollowsTheBarInTheLabelColour) {
    for (const double scale : viewScales)
        for (const auto appearance : {Appearance::light, Appearance::dark}) {
            VantryView view = usedOf(47, 100);
            const auto background = appearance == Appearance::dark ? QColor(0, 0, 0) : QColor(255, 255, 255);
            view.showsPercentageLabel = true;
            const auto picture = pictureOf(view, {94, 22}, scale, appearance, background);
            int inked = 0;
            int strongest = 0;
            for (int y = 0; y < picture.height(); ++y)
                for (int x = static_cast<int>(61 * scale); x < picture.width(); ++x) {
                    const int contrast = std::abs(picture.at(x, y).red() - background.red());
                    inked += contrast > 60 ? 1 : 0;
                    strongest = std::max(strongest, contrast);
                }
            EXPECT_GT(inked, 20 * scale);
            EXPECT_LE(strongest, 217) << "the label colour is 0.85 opaque";
            EXPECT_GE(strongest, 130);
            // Nothing but the gap between bar and label.
            for (int y = 0; y < picture.height(); ++y)
                EXPECT_EQ(picture.at(static_cast<int>(58 * scale), y), background);
        }
}

TEST(SwatchPicture, IsRoundAndPaintedAsTheBarIs) {
    for (const double scale : viewScales) {
        SolidSwatchView used(SolidSwatchView::Kind::used);
        const auto picture = pictureOf(used, SolidSwatchView::fixedSize, scale);
        const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
        EXPECT_EQ(picture.at(0, 0).alpha(), 0);
        EXPECT_EQ(picture.at(pixel(1), pixel(1)).alpha(), 0);
        EXPECT_EQ(picture.at(pixel(11) - 1, pixel(11) - 1).alpha(), 0);
        const QColor left = picture.at(pixel(2), pixel(6));
        const QColor right = picture.at(pixel(10) - 1, pixel(6));
        EXPECT_GT(left.red(), left.blue()) << "red to orange";
        EXPECT_GT(right.blue(), right.red()) << "teal to blue";

        const SolidSwatchView available(SolidSwatchView::Kind::available);
        EXPECT_TRUE(isNear(pictureOf(available, SolidSwatchView::fixedSize, scale).at(pixel(6), pixel(6)), lightTrack));
        EXPECT_TRUE(
            isNear(pictureOf(available, SolidSwatchView::fixedSize, scale, Appearance::dark).at(pixel(6), pixel(6)),
                   darkTrack));
    }
}

} // namespace vantry
