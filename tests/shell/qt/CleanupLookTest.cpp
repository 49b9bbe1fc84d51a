#include "shell/qt/CleanupLook.h"

#include <gtest/gtest.h>

#include <QFont>
#include <QFontMetrics>
#include <algorithm>
#include <cmath>

namespace vantry {

namespace {

double luminance(const QColor& color) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red() / 255.0) + 0.7152 * linear(color.green() / 255.0) +
           0.0722 * linear(color.blue() / 255.0);
}

double contrast(const QColor& one, const QColor& other) {
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

} // namespace

TEST(CleanupLook, StatusColoursCanBeReadOnACard) {
    for (const Appearance appearance : {Appearance::light, Appearance::dark})
        for (const SystemColor role :
             {SystemColor::green, SystemColor::orange, SystemColor::blue, SystemColor::red, SystemColor::purple}) {
            const QColor color = readableColor(role, appearance);
            EXPECT_GE(contrast(color, cardColor(appearance)), 4.45) << static_cast<int>(role);
            EXPECT_NEAR(color.hueF(), roleColor(role, appearance).hueF(), 0.03) << "it is still that colour";
        }
}

TEST(CleanupLook, ATextIsAsHighAsItsLines) {
    const QFontMetrics metrics{QFont()};
    EXPECT_EQ(wrappedHeight(metrics, QString(), 100), 0);
    EXPECT_EQ(wrappedHeight(metrics, QStringLiteral("one"), 1000), metrics.height());
    EXPECT_GT(wrappedHeight(metrics, QStringLiteral("one two three four five six"), 60), metrics.height());
    EXPECT_EQ(wrappedHeight(metrics, QStringLiteral("one\ntwo"), 1000), metrics.height() + metrics.lineSpacing())
        << "though both lines would fit beside each other";
}

} // namespace vantry
