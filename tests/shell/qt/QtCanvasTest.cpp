#include "shell/qt/QtCanvas.h"

#include "shell/qt/QtConversions.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <array>
#include <vector>

namespace vantry {

namespace {

constexpr Rgba red{1, 0, 0};
constexpr Rgba green{0, 1, 0};
constexpr Rgba blue{0, 0, 1};
constexpr std::array<double, 2> scales{1, 2};

const QColor white(255, 255, 255);

const std::vector<GradientStop> redToBlue = {{red, 0}, {blue, 1}};

template <class Draw>
Picture painted(Size size, double scale, const Draw& draw, const QColor& background = white) {
    Picture picture(size, scale, background);
    picture.paint(Appearance::light, draw);
    return picture;
}

/// The smallest rectangle of device pixels that differ from `background`; empty when none does.
QRect inkOf(const Picture& picture, const QColor& background = white) {
    QRect ink;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.at(x, y) != background)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

} // namespace

TEST(QtCanvas, AGradientToTheRightBeginsOnTheLeft) {
    for (const double scale : scales) {
        const auto picture = painted({40, 10}, scale, [](Canvas& canvas) {
            canvas.fillGradient({0, 0, 40, 10}, redToBlue, GradientDirection::leftToRight);
        });
        for (const int y : {0, picture.height() - 1}) {
            EXPECT_TRUE(isNear(picture.at(0, y), QColor(252, 0, 3), 4));
            EXPECT_TRUE(isNear(picture.at(picture.width() / 2, y), QColor(127, 0, 127), 4));
            EXPECT_TRUE(isNear(picture.at(picture.width() - 1, y), QColor(3, 0, 252), 4));
        }
        for (int x = 1; x < picture.width(); ++x)
            EXPECT_LT(picture.at(x, 0).red(), picture.at(x - 1, 0).red()) << x;
    }
}

TEST(QtCanvas, AGradientToTheBottomBeginsAtTheTop) {
    for (const double scale : scales) {
        const auto picture = painted({10, 40}, scale, [](Canvas& canvas) {
            canvas.fillGradient({0, 0, 10, 40}, redToBlue, GradientDirection::topToBottom);
        });
        for (const int x : {0, picture.width() - 1}) {
            EXPECT_TRUE(isNear(picture.at(x, 0), QColor(252, 0, 3), 4));
            EXPECT_TRUE(isNear(picture.at(x, picture.height() / 2), QColor(127, 0, 127), 4));
            EXPECT_TRUE(isNear(picture.at(x, picture.height() - 1), QColor(3, 0, 252), 4));
        }
    }
}

TEST(QtCanvas, AGradientSpansItsOwnRectangleAndNothingElse) {
    for (const double scale : scales) {
        const auto picture = painted({40, 20}, scale, [](Canvas& canvas) {
            canvas.fillGradient({10, 5, 20, 10}, redToBlue, GradientDirection::leftToRight);
        });
        const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
        EXPECT_EQ(inkOf(picture), QRect(pixel(10), pixel(5), pixel(20), pixel(10)));
        EXPECT_TRUE(isNear(picture.at(pixel(10), pixel(10)), QColor(250, 0, 5), 6));
        EXPECT_TRUE(isNear(picture.at(pixel(20), pixel(10)), QColor(127, 0, 127), 8));
        EXPECT_TRUE(isNear(picture.at(pixel(30) - 1, pixel(10)), QColor(5, 0, 250), 6));
    }
}

TEST(QtCanvas, AGradientHasItsColoursWhereItsStopsAre) {
    const std::vector<GradientStop> stops = {{red, 0}, {green, 0.25}, {green, 0.75}, {blue, 1}};
    for (const double scale : scales) {
        const auto picture = painted({40, 4}, scale, [&](Canvas& canvas) {
            canvas.fillGradient({0, 0, 40, 4}, stops, GradientDirection::leftToRight);
        });
        const auto at = [&](double points) { return picture.at(static_cast<int>(points * scale), 1); };
        EXPECT_TRUE(isNear(at(5), QColor(127, 127, 0), 14));
        for (const double points : {11.0, 20.0, 29.0})
            EXPECT_TRUE(isNear(at(points), QColor(0, 255, 0)));
        EXPECT_TRUE(isNear(at(35), QColor(0, 127, 127), 14));
    }
}

TEST(QtCanvas, AGradientToTransparentShowsTheBackground) {
    const std::vector<GradientStop> stops = {{Rgba{1, 1, 1, 0}, 0}, {Rgba{1, 1, 1, 1}, 1}};
    const auto picture = painted(
        {100, 1}, 1,
        [&](Canvas& canvas) {
            canvas.fillGradient({0, 0, 100, 1}, stops, GradientDirection::leftToRight);
        },
        QColor(0, 0, 0));
    EXPECT_TRUE(isNear(picture.at(0, 0), QColor(1, 1, 1)));
    EXPECT_TRUE(isNear(picture.at(50, 0), QColor(129, 129, 129)));
    EXPECT_TRUE(isNear(picture.at(99, 0), QColor(254, 254, 254)));
}

TEST(QtCanvas, AClipKeepsEverythingOutsideUntouched) {
    const RoundedRect capsule{{0, 0, 40, 10}, 5};
    for (const double scale : scales) {
        const auto picture = painted({40, 10}, scale, [&](Canvas& canvas) {
            canvas.clip(capsule);
            canvas.fill(Rect{0, 0, 40, 10}, red);
            canvas.fillGradient({0, 0, 40, 10}, redToBlue, GradientDirection::leftToRight);
        });
        const int right = picture.width() - 1;
        const int bottom = picture.height() - 1;
        for (const auto& [x, y] :
             {std::pair(0, 0), std::pair(right, 0), std::pair(0, bottom), std::pair(right, bottom)})
            EXPECT_EQ(picture.at(x, y), white) << x << " " << y;
        EXPECT_TRUE(isNear(picture.at(picture.width() / 2, 0), QColor(127, 0, 127), 4)) << "the straight part";
        EXPECT_NE(picture.at(0, picture.height() / 2), white);
    }
}

TEST(QtCanvas, AnEllipseClipsToItsInscribedOval) {
    for (const double scale : scales) {
        const auto picture = painted({12, 12}, scale, [](Canvas& canvas) {
            canvas.clip(Ellipse{{1, 1, 10, 10}});
            canvas.fill(Rect{0, 0, 12, 12}, red);
        });
        const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
        EXPECT_EQ(picture.at(pixel(1), pixel(1)), white);
        EXPECT_EQ(picture.at(pixel(0), pixel(6)), white);
        EXPECT_TRUE(isNear(picture.at(pixel(6), pixel(6)), QColor(255, 0, 0)));
        EXPECT_TRUE(isNear(picture.at(pixel(6), pixel(2)), QColor(255, 0, 0)));
        EXPECT_TRUE(isNear(picture.at(pixel(2), pixel(6)), QColor(255, 0, 0)));
    }
}

TEST(QtCanvas, ClipsNarrowEachOtherUntilTheyAreRestored) {
    const auto picture = painted({30, 10}, 1, [](Canvas& canvas) {
        canvas.save();
        canvas.clip(Rect{0, 0, 20, 10});
        canvas.save();
        canvas.clip(Rect{10, 0, 20, 10});
        canvas.fill(Rect{0, 0, 30, 5}, red);
        canvas.restore();
        canvas.fill(Rect{0, 5, 30, 1}, green);
        canvas.restore();
        canvas.fill(Rect{0, 6, 30, 4}, blue);
    });
    const struct {
        int x;
        int y;
        QColor color;
    } cases[] = {
        {9, 2, white},      {10, 2, Qt::red}, {19, 2, Qt::red}, {20, 2, white},    {0, 5, Qt::green},
        {19, 5, Qt::green}, {20, 5, white},   {0, 8, Qt::blue}, {29, 8, Qt::blue},
    };
    for (const auto& [x, y, color] : cases)
        EXPECT_TRUE(isNear(picture.at(x, y), color)) << x << " " << y;
}

TEST(QtCanvas, ScreenBrightensUntilItIsRestored) {
    const QColor gray(102, 102, 102);
    for (const double scale : scales) {
        const auto picture = painted(
            {30, 2}, scale,
            [](Canvas& canvas) {
                canvas.fill(Rect{0, 0, 10, 2}, Rgba{0.4, 0.4, 0.4});
                canvas.save();
                canvas.setBlendMode(BlendMode::screen);
                canvas.fill(Rect{10, 0, 10, 2}, Rgba{0.4, 0.4, 0.4});
                const std::vector<GradientStop> even = {{Rgba{0.4, 0.4, 0.4}, 0}, {Rgba{0.4, 0.4, 0.4}, 1}};
                canvas.fillGradient({20, 0, 10, 1}, even, GradientDirection::leftToRight);
                canvas.restore();
                canvas.fill(Rect{20, 1, 10, 1}, Rgba{0.4, 0.4, 0.4});
            },
            gray);
        const auto at = [&](double x, double y) {
            return picture.at(static_cast<int>(x * scale), static_cast<int>(y * scale));
        };
        EXPECT_TRUE(isNear(at(5, 0), gray)) << "source over";
        EXPECT_TRUE(isNear(at(15, 0), QColor(163, 163, 163))) << "1 - 0.6 * 0.6";
        EXPECT_TRUE(isNear(at(25, 0), QColor(163, 163, 163))) << "a gradient too";
        EXPECT_TRUE(isNear(at(25, 1), gray)) << "source over again";
    }
}

TEST(QtCanvas, TheBlendModeCanBeReset) {
    const auto picture = painted({10, 1}, 1, [](Canvas& canvas) {
        canvas.setBlendMode(BlendMode::screen);
        canvas.setBlendMode(BlendMode::sourceOver);
        canvas.fill(Rect{0, 0, 10, 1}, red);
    });
    EXPECT_TRUE(isNear(picture.at(5, 0), Qt::red));
}

TEST(QtCanvas, ATranslucentColourIsBlendedWithTheBackground) {
    const auto picture = painted({10, 1}, 1, [](Canvas& canvas) {
        canvas.fill(Rect{0, 0, 10, 1}, Rgba{0, 0, 0, 0.25});
    });
    EXPECT_TRUE(isNear(picture.at(5, 0), QColor(191, 191, 191)));
}

TEST(QtCanvas, ShapesAreFilledInsideTheirOutlines) {
    const Shape shapes[] = {Rect{2, 2, 16, 8}, RoundedRect{{2, 2, 16, 8}, 4}, Ellipse{{2, 2, 16, 8}}};
    for (const double scale : scales)
        for (const Shape& shape : shapes) {
            const auto picture = painted({20, 12}, scale, [&](Canvas& canvas) { canvas.fill(shape, red); });
            const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
            EXPECT_EQ(inkOf(picture), QRect(pixel(2), pixel(2), pixel(16), pixel(8))) << shape.index();
            EXPECT_TRUE(isNear(picture.at(pixel(10), pixel(6)), Qt::red));
            const bool square = std::holds_alternative<Rect>(shape);
            EXPECT_EQ(picture.at(pixel(2), pixel(2)) == QColor(255, 0, 0), square) << shape.index();
        }
}

TEST(QtCanvas, APartlyCoveredPixelIsPaintedInPart) {
    const auto picture = painted({10, 1}, 1, [](Canvas& canvas) { canvas.fill(Rect{0, 0, 5.5, 1}, Rgba{0, 0, 0}); });
    EXPECT_TRUE(isNear(picture.at(4, 0), QColor(0, 0, 0)));
    EXPECT_TRUE(isNear(picture.at(5, 0), QColor(127, 127, 127), 4));
    EXPECT_EQ(picture.at(6, 0), white);
    // At twice the scale half a point is a whole pixel.
    const auto fine = painted({10, 1}, 2, [](Canvas& canvas) { canvas.fill(Rect{0, 0, 5.5, 1}, Rgba{0, 0, 0}); });
    EXPECT_TRUE(isNear(fine.at(10, 0), QColor(0, 0, 0)));
    EXPECT_EQ(fine.at(11, 0), white);
}

TEST(QtCanvas, AStrokeIsCentredOnTheEdgeAndLeavesTheInsideAlone) {
    for (const double scale : scales) {
        const auto picture = painted({20, 20}, scale, [](Canvas& canvas) {
            canvas.stroke(Rect{5, 5, 10, 10}, Rgba{0, 0, 0}, 2);
        });
        const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
        EXPECT_EQ(inkOf(picture), QRect(pixel(4), pixel(4), pixel(12), pixel(12)));
        for (const double inLine : {4.0, 5.0, 14.0, 15.0})
            EXPECT_TRUE(isNear(picture.at(pixel(inLine), pixel(10)), QColor(0, 0, 0))) << inLine;
        EXPECT_EQ(picture.at(pixel(10), pixel(10)), white);
        EXPECT_EQ(picture.at(pixel(6), pixel(10)), white);
    }
}

TEST(QtCanvas, AThinStrokePartlyCoversTheTwoPixelsAroundIt) {
    const auto picture = painted({20, 20}, 1, [](Canvas& canvas) {
        canvas.stroke(Rect{5, 5, 10, 10}, Rgba{0, 0, 0}, 0.75);
    });
    for (const int x : {4, 5})
        EXPECT_TRUE(isNear(picture.at(x, 10), QColor(159, 159, 159), 8)) << x; // 0.375 of each
}

TEST(QtCanvas, DynamicColoursFollowTheAppearanceAndKeepTheirFactor) {
    const struct {
        Color color;
        QColor light;
        QColor dark;
    } cases[] = {
        {DynamicColor{SystemColor::red}, QColor(255, 59, 48), QColor(255, 69, 58)},
        {DynamicColor{SystemColor::windowBackground}, QColor(236, 236, 236), QColor(50, 50, 50)},
        {DynamicColor{SystemColor::windowBackground, 0.4}, QColor(236, 236, 236, 102), QColor(50, 50, 50, 102)},
        {DynamicColor{SystemColor::label}, QColor(0, 0, 0, 217), QColor(255, 255, 255, 217)},
        {DynamicColor{SystemColor::label, 0.5}, QColor(0, 0, 0, 108), QColor(255, 255, 255, 108)},
        {Rgba{0.2, 0.4, 0.6, 0.8}, QColor(51, 102, 153, 204), QColor(51, 102, 153, 204)},
    };
    for (const auto& [color, light, dark] : cases) {
        EXPECT_TRUE(isNear(qColor(color, Appearance::light), light, 1));
        EXPECT_TRUE(isNear(qColor(color, Appearance::dark), dark, 1));
        for (const auto appearance : {Appearance::light, Appearance::dark}) {
            Picture picture({4, 1}, 1, Qt::transparent);
            picture.paint(appearance, [&](Canvas& canvas) {
                canvas.fill(Rect{0, 0, 2, 1}, color);
                const std::vector<GradientStop> even = {{color, 0}, {color, 1}};
                canvas.fillGradient({2, 0, 2, 1}, even, GradientDirection::leftToRight);
            });
            for (const int x : {0, 3})
                EXPECT_TRUE(isNear(picture.at(x, 0), appearance == Appearance::dark ? dark : light, 3)) << x;
        }
    }
}

TEST(QtCanvas, TextIsCentredInItsRectangleAndHasItsColour) {
    const Rect rect{20, 10, 60, 20};
    for (const double scale : scales) {
        const auto picture = painted({100, 40}, scale, [&](Canvas& canvas) {
            canvas.drawText("808", {12, FontWeight::bold, true}, red, rect);
        });
        const QRect ink = inkOf(picture);
        ASSERT_FALSE(ink.isEmpty());
        EXPECT_NEAR((ink.left() + ink.right() + 1) / 2.0 / scale, 50, 1);
        EXPECT_NEAR((ink.top() + ink.bottom() + 1) / 2.0 / scale, 20, 2);
        EXPECT_GE(ink.height() / scale, 12 * 0.6);
        EXPECT_LE(ink.height() / scale, 12 * 0.9);
        for (int y = ink.top(); y <= ink.bottom(); ++y)
            for (int x = ink.left(); x <= ink.right(); ++x) {
                const QColor pixel = picture.at(x, y);
                ASSERT_EQ(pixel.red(), 255) << "only white and red are mixed";
                ASSERT_EQ(pixel.green(), pixel.blue());
            }
    }
}

TEST(QtCanvas, TextIsNotCutAtTheEdgeOfItsRectangle) {
    const auto draw = [](const Rect& rect) {
        return painted({60, 30}, 1, [&](Canvas& canvas) { canvas.drawText("100%", {12}, red, rect); });
    };
    EXPECT_EQ(draw({29, 14, 2, 2}).image(), draw({0, 0, 60, 30}).image());
}

TEST(QtCanvas, TextKeepsItsSizeInPointsAtEveryScale) {
    double widths[2] = {};
    double heights[2] = {};
    double bold[2] = {};
    for (std::size_t i = 0; i < scales.size(); ++i)
        painted({10, 10}, scales[i], [&](Canvas& canvas) {
            widths[i] = canvas.textWidth("100%", {10.5, FontWeight::medium, true});
            heights[i] = canvas.boundingHeight({10.5, FontWeight::medium, true});
            bold[i] = canvas.textWidth("100%", {10.5, FontWeight::bold, true});
        });
    EXPECT_GT(widths[0], 15);
    EXPECT_LT(widths[0], 45);
    EXPECT_NEAR(widths[1], widths[0], 1.5);
    EXPECT_GT(heights[0], 10.5);
    EXPECT_LT(heights[0], 21);
    EXPECT_NEAR(heights[1], heights[0], 1.5);
    EXPECT_GE(bold[0], widths[0]);
}

TEST(QtCanvas, TextGrowsWithItsFontAndItsLength) {
    painted({10, 10}, 1, [](Canvas& canvas) {
        EXPECT_EQ(canvas.textWidth("", {12}), 0);
        EXPECT_NEAR(canvas.textWidth("8888", {12}), 2 * canvas.textWidth("88", {12}), 1);
        EXPECT_NEAR(canvas.textWidth("88", {24}), 2 * canvas.textWidth("88", {12}), 2);
        EXPECT_NEAR(canvas.boundingHeight({24}), 2 * canvas.boundingHeight({12}), 2);
        EXPECT_GT(canvas.textWidth("\u2014", {12}), 0);
    });
}

TEST(QtCanvas, AFontSizeIsInPixelsWhateverTheResolutionOfTheDevice) {
    for (const int dotsPerMeter : {2835, 3780, 7560}) { // 72, 96 and 192 dpi
        QImage device(10, 10, QImage::Format_ARGB32_Premultiplied);
        device.setDotsPerMeterX(dotsPerMeter);
        device.setDotsPerMeterY(dotsPerMeter);
        const QFont font = qFont({12, FontWeight::semibold}, device);
        EXPECT_NEAR(font.pointSizeF() * device.logicalDpiY() / 72, 12, 0.01);
        EXPECT_NEAR(QFontInfo(QFont(font, &device)).pixelSize(), 12, 1);
        EXPECT_EQ(font.weight(), QFont::DemiBold);
    }
}

TEST(QtCanvas, FontWeightsAreThoseOfTheToolkit) {
    const QImage device(10, 10, QImage::Format_ARGB32_Premultiplied);
    const struct {
        FontWeight weight;
        QFont::Weight expected;
    } cases[] = {{FontWeight::regular, QFont::Normal},
                 {FontWeight::medium, QFont::Medium},
                 {FontWeight::semibold, QFont::DemiBold},
                 {FontWeight::bold, QFont::Bold}};
    for (const auto& [weight, expected] : cases)
        EXPECT_EQ(qFont({12, weight}, device).weight(), expected);
}

} // namespace vantry
