#include "shell/qt/SymbolPicture.h"

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupCategory.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

#include <QImage>
#include <set>
#include <string>
#include <string_view>

namespace vantry {

namespace {

std::set<std::string_view> allSymbols() {
    static const CleanupWindowContent content;
    std::set<std::string_view> names{"eye.fill",         "lock.shield.fill",       "magnifyingglass",
                                     "checkmark.circle", content.noticeSymbolName, "exclamationmark.triangle.fill"};
    for (const auto& area : allCleanupAreas)
        names.insert(area.symbolName);
    for (const auto& category : allCleanupCategories)
        names.insert(category.symbolName);
    for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        names.insert(avenue.symbolName);
    for (const auto& avenue : CleanupAvenue::catalog())
        names.insert(avenue.symbolName);
    return names;
}

QImage imageOf(std::string_view name, int side = 22, double scale = 1, const QColor& color = Qt::black) {
    return symbolPicture(name, side, color, scale).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How many pixels are more than half opaque.
int inked(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 127 ? 1 : 0;
    return count;
}

int differences(const QImage& one, const QImage& other) {
    int count = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            count += std::abs(qAlpha(one.pixel(x, y)) - qAlpha(other.pixel(x, y))) > 100 ? 1 : 0;
    return count;
}

} // namespace

TEST(SymbolPicture, EveryUsedSymbolHasItsOwnPicture) {
    for (const auto name : allSymbols())
        EXPECT_NE(imageOf(name), imageOf("no.such.symbol")) << name;
}

TEST(SymbolPicture, IsNeitherEmptyNorABlock) {
    for (const auto name : allSymbols()) {
        const QImage image = imageOf(name);
        EXPECT_GT(inked(image), 12) << name;
        EXPECT_LT(inked(image), 22 * 22 * 6 / 10) << name;
    }
}

TEST(SymbolPicture, NoTwoLookTheSame) {
    const auto names = allSymbols();
    for (auto one = names.begin(); one != names.end(); ++one)
        for (auto other = std::next(one); other != names.end(); ++other)
            EXPECT_GT(differences(imageOf(*one, 44), imageOf(*other, 44)), 30) << *one << " and " << *other;
}

TEST(SymbolPicture, IsAsSharpAsTheScreen) {
    for (const auto name : allSymbols()) {
        EXPECT_EQ(imageOf(name, 22, 2).size(), QSize(44, 44)) << name;
        EXPECT_EQ(symbolPicture(name, 22, Qt::black, 2).deviceIndependentSize(), QSizeF(22, 22)) << name;
        EXPECT_EQ(imageOf(name, 28, 1).size(), QSize(28, 28)) << name;
    }
}

TEST(SymbolPicture, HasTheColourThatIsAskedFor) {
    for (const auto name : allSymbols()) {
        const QImage image = imageOf(name, 44, 1, QColor(10, 132, 255));
        int wrong = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (const QColor color = image.pixelColor(x, y); color.alpha() > 200)
                    wrong += isNear(color, QColor(10, 132, 255, color.alpha()), 4) ? 0 : 1;
        EXPECT_EQ(wrong, 0) << name;
    }
}

TEST(SymbolPicture, AnUnknownNameGetsTheNeutralPicture) {
    EXPECT_EQ(imageOf("no.such.symbol"), imageOf("neutral"));
    EXPECT_GT(inked(imageOf("no.such.symbol")), 12);
}

} // namespace vantry
