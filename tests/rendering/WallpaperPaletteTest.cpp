#include "rendering/WallpaperPalette.h"

#include "tests/rendering/NaivePalette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace vantry::WallpaperThemeReader {

namespace {

constexpr std::size_t pixelCount = pictureSide * pictureSide;

PicturePixels filled(PicturePixel pixel) { return PicturePixels(pixelCount, pixel); }

/// `parts` of equal size, one after the other.
PicturePixels striped(const std::vector<PicturePixel>& parts) {
    PicturePixels pixels;
    for (std::size_t i = 0; i < pixelCount; ++i)
        pixels.push_back(parts[i * parts.size() / pixelCount]);
    return pixels;
}

ColorBin bin(RGB color, double weight, double vibranceWeight = 1) { return {color, weight, vibranceWeight}; }

RGB colorOf(double hue, double saturation, double brightness) { return rgb({hue, saturation, brightness}); }

HSB hsbOf(const Rgba& color) { return hsb({color.red, color.green, color.blue}); }

constexpr PicturePixel red{230, 20, 20};
constexpr PicturePixel rose{230, 20, 110};
constexpr PicturePixel violet{130, 20, 230};
constexpr PicturePixel green{30, 160, 40};

} // namespace

TEST(WallpaperPalette, OnlyAFullComponentReachesTheLastLevel) {
    const struct {
        double component;
        int level;
    } cases[] = {{1, 15},       {0.999, 14}, {14.0 / 15, 14}, {0.9333, 13}, {0.5, 7},
                 {1.0 / 15, 1}, {0.066, 0},  {0, 0},          {-0.2, 0},    {1.2, 15}};
    for (const auto& [component, level] : cases)
        EXPECT_EQ(quantized(component), level) << component;
}

TEST(WallpaperPalette, VibranceGrowsWithSaturationAndBrightness) {
    EXPECT_DOUBLE_EQ(vibrance({0, 0, 0}), 0.18);
    EXPECT_DOUBLE_EQ(vibrance({0.7, 0.7, 0.7}), 0.18);
    EXPECT_DOUBLE_EQ(vibrance({1, 0, 0}), 0.18 + 3.4 + 0.65);
    EXPECT_DOUBLE_EQ(vibrance({0.25, 0.125, 0.125}), 0.18 + 3.4 * 0.25 + 0.65 * 0.5 * 0.5);
}

TEST(WallpaperPalette, HueSaturationAndBrightnessConvertBothWays) {
    const struct {
        RGB color;
        double hue, saturation, brightness;
    } cases[] = {
        {{0, 0, 0}, 0, 0, 0},
        {{1, 1, 1}, 0, 0, 1},
        {{0.5, 0.5, 0.5}, 0, 0, 0.5},
        {{1, 0, 0}, 0, 1, 1},
        {{1, 1, 0}, 1.0 / 6, 1, 1},
        {{0, 1, 0}, 2.0 / 6, 1, 1},
        {{0, 1, 1}, 3.0 / 6, 1, 1},
        {{0, 0, 1}, 4.0 / 6, 1, 1},
        {{1, 0, 1}, 5.0 / 6, 1, 1},
        {{1, 0, 0.5}, 5.5 / 6, 1, 1},
        {{0.5, 0.25, 0.25}, 0, 0.5, 0.5},
    };
    for (const auto& [color, hue, saturation, brightness] : cases) {
        const HSB found = hsb(color);
        EXPECT_NEAR(found.hue, hue, 1e-12);
        EXPECT_NEAR(found.saturation, saturation, 1e-12);
        EXPECT_NEAR(found.brightness, brightness, 1e-12);
    }
    for (int i = 0; i < 4096; ++i) {
        const RGB color{(i & 15) / 15.0, (i >> 4 & 15) / 15.0, (i >> 8) / 15.0};
        const RGB back = rgb(hsb(color));
        ASSERT_NEAR(back.red, color.red, 1e-12) << i;
        ASSERT_NEAR(back.green, color.green, 1e-12) << i;
        ASSERT_NEAR(back.blue, color.blue, 1e-12) << i;
    }
}

TEST(WallpaperPalette, APixelThatIsAtMostHalfOpaqueDoesNotCount) {
    EXPECT_TRUE(colorBins(filled({200, 0, 0, 127})).empty());
    EXPECT_TRUE(colorBins(filled({200, 0, 0, 0})).empty());
    ASSERT_EQ(colorBins(filled({200, 0, 0, 128})).size(), 1U);
    EXPECT_EQ(colorBins(filled({200, 0, 0, 128})).front().weight, pixelCount);
}

TEST(WallpaperPalette, ABinHoldsTheAverageOfItsPixels) {
    // All of one level, but for the last two.
    const PicturePixels pixels{{0, 0, 0}, {10, 0, 16}, {16, 16, 0}, {17, 0, 0}, {255, 255, 254}};
    const auto bins = colorBins(pixels);
    ASSERT_EQ(bins.size(), 3U);
    EXPECT_EQ(bins[0].weight, 3);
    EXPECT_NEAR(bins[0].color.red, 26 / 255.0 / 3, 1e-12);
    EXPECT_NEAR(bins[0].color.green, 16 / 255.0 / 3, 1e-12);
    EXPECT_NEAR(bins[0].color.blue, 16 / 255.0 / 3, 1e-12);
    EXPECT_NEAR(bins[0].vibranceWeight,
                vibrance({0, 0, 0}) + vibrance({10 / 255.0, 0, 16 / 255.0}) + vibrance({16 / 255.0, 16 / 255.0, 0}),
                1e-12);
    // Of equal weight, so in the order of their levels.
    EXPECT_NEAR(bins[1].color.red, 17 / 255.0, 1e-12);
    EXPECT_NEAR(bins[2].color.red, 1, 1e-12);
}

TEST(WallpaperPalette, TheHeaviestBinComesFirst) {
    const auto bins = colorBins(striped({red, green, green, violet, violet, violet}));
    ASSERT_EQ(bins.size(), 3U);
    EXPECT_GT(bins[0].weight, bins[1].weight);
    EXPECT_GT(bins[1].weight, bins[2].weight);
    EXPECT_NEAR(bins[0].color.blue, violet.blue / 255.0, 1e-9);
}

TEST(WallpaperPalette, AHueBelongsToOneFamilyOrToNone) {
    const struct {
        double hue;
        bool red, rose, violet;
    } cases[] = {
        {0, true, false, false},      {0.075, true, false, false},   {0.0751, false, false, false},
        {0.5, false, false, false},   {0.6899, false, false, false}, {0.69, false, false, true},
        {0.8999, false, false, true}, {0.9, false, true, false},     {0.9549, false, true, false},
        {0.955, true, false, false},  {1, true, false, false},
    };
    for (const auto& [hue, isRed, isRose, isViolet] : cases) {
        const HSB color{hue, 1, 1};
        EXPECT_EQ(isInFamily(color, HueFamily::red), isRed) << hue;
        EXPECT_EQ(isInFamily(color, HueFamily::rose), isRose) << hue;
        EXPECT_EQ(isInFamily(color, HueFamily::violet), isViolet) << hue;
    }
}

TEST(WallpaperPalette, AnAccentIsSaturatedBrightAndMoreThanOnePixel) {
    const struct {
        const char* what;
        HSB color;
        double weight;
        bool picked;
    } cases[] = {
        {"strong", {0.8, 0.9, 0.9}, 2, true},
        {"one pixel", {0.8, 0.9, 0.9}, 1, false},
        {"just saturated enough", {0.8, 0.2401, 0.9}, 2, true},
        {"too grey", {0.8, 0.2399, 0.9}, 1000, false},
        {"just bright enough", {0.8, 0.9, 0.1601}, 2, true},
        {"too dark", {0.8, 0.9, 0.1599}, 1000, false},
        {"of another family", {0.5, 0.9, 0.9}, 1000, false},
    };
    for (const auto& [what, color, weight, picked] : cases) {
        const std::vector<ColorBin> bins{bin(rgb(color), weight)};
        EXPECT_EQ(accent(bins, HueFamily::violet), picked ? &bins[0] : nullptr) << what;
    }
}

TEST(WallpaperPalette, TheAccentOfAFamilyHasTheHighestScoreAndTheFirstWinsATie) {
    const RGB pale = colorOf(0.8, 0.3, 0.6);
    const RGB strong = colorOf(0.8, 0.9, 0.9);
    std::vector<ColorBin> bins{bin(pale, 40), bin(strong, 10), bin(strong, 10)};
    EXPECT_EQ(accent(bins, HueFamily::violet), &bins[1]); // 3.16 x 2.33 x 1.3 against 6.32 x 1.01 x 1.0
    bins[0].weight = 400;
    EXPECT_EQ(accent(bins, HueFamily::violet), &bins[0]);
    EXPECT_EQ(accent({}, HueFamily::red), nullptr);
}

TEST(WallpaperPalette, DominantColoursDifferFromAllThatWereChosen) {
    // Squared distances of 0.018 and a little more.
    const double near = std::sqrt(0.0179);
    const double far = std::sqrt(0.0181);
    std::vector<RGB> chosen{{0.2, 0.2, 0.2}};
    const std::vector<ColorBin> bins{bin({0.2 + near, 0.2, 0.2}, 9), bin({0.2 + far, 0.2, 0.2}, 8),
                                     bin({0.2 + far, 0.2 + near, 0.2}, 7), bin({0.9, 0.9, 0.9}, 6),
                                     bin({0.5, 0.9, 0.1}, 5)};
    addDominantColors(bins, 3, chosen);
    EXPECT_EQ(chosen, (std::vector<RGB>{{0.2, 0.2, 0.2}, bins[1].color, bins[3].color}));
    addDominantColors(bins, 3, chosen); // as many as there may be
    EXPECT_EQ(chosen.size(), 3U);
}

TEST(WallpaperPalette, FillingUpAddsTheMostDifferentAndVividColours) {
    const double near = std::sqrt(0.0099);
    const double far = std::sqrt(0.0101);
    std::vector<RGB> chosen{{0.2, 0.2, 0.2}};
    const std::vector<ColorBin> bins{bin({0.2 + near, 0.2, 0.2}, 9000, 9000), bin({0.2 + far, 0.2, 0.2}, 10, 10),
                                     bin({0.2, 0.2 + far, 0.2}, 10, 11), bin({0.2, 0.2, 0.2 + far}, 10, 11)};
    fillUp(bins, 2, chosen);
    ASSERT_EQ(chosen.size(), 2U);
    EXPECT_EQ(chosen[1], bins[2].color); // the first of the two that are as good
    fillUp(bins, 9, chosen);
    EXPECT_EQ(chosen.size(), 4U); // and then nothing differs any more
}

TEST(WallpaperPalette, EnrichingStrengthensColoursAndLeavesGreysGrey) {
    const struct {
        HSB color;
        double saturation, brightness;
    } cases[] = {
        {{0.3, 0, 0}, 0, 0.46},         {{0.3, 0.079, 0.5}, 0.079, 0.55}, {{0.3, 0.08, 0.5}, 0.1956, 0.55},
        {{0.3, 0.5, 0.9}, 0.75, 0.98},  {{0.3, 0.69, 0.8}, 1.0, 0.88},    {{0.3, 1, 1}, 1, 0.98},
        {{0.3, 0.2, 0.4}, 0.354, 0.46}, {{0.3, 0.2, 0.42}, 0.354, 0.462},
    };
    for (const auto& [color, saturation, brightness] : cases) {
        const HSB found = enriched(color);
        EXPECT_EQ(found.hue, color.hue);
        EXPECT_NEAR(found.saturation, saturation, 1e-3) << color.saturation;
        EXPECT_NEAR(found.brightness, brightness, 1e-9) << color.brightness;
    }
}

TEST(WallpaperPalette, IsOrderedByHueWithTheNearGreysBehindByBrightness) {
    std::vector<HSB> colors{{0.2, 0.05, 0.9}, {0.9, 0.5, 0.5}, {0.1, 0.0999, 0.5}, {0.1, 0.1, 0.5}, {0.5, 1, 1}};
    sortForDisplay(colors);
    std::string order;
    for (const auto& color : colors)
        order += std::to_string(color.saturation).substr(0, 4) + " ";
    EXPECT_EQ(order, "0.10 1.00 0.50 0.09 0.05 ");
}

TEST(WallpaperPalette, ARedWithEquallyMuchGreenAndBlueComesFirst) {
    const auto palette = paletteOfPixels(std::vector<PicturePixel>{{255, 18, 17}, {255, 32, 33}, {0, 255, 0}}, 7);
    ASSERT_EQ(palette.size(), 2U);
    EXPECT_EQ(hsbOf(palette[0]).hue, 0);
    EXPECT_DOUBLE_EQ(hsbOf(palette[1]).hue, 1.0 / 3);
}

TEST(WallpaperPalette, OfATransparentPictureIsEmpty) {
    EXPECT_TRUE(paletteOfPixels(filled({200, 30, 40, 0}), 7).empty());
    EXPECT_TRUE(paletteOfPixels(filled({200, 30, 40, 127}), 7).empty());
    EXPECT_TRUE(paletteOfPixels({}, 7).empty());
}

TEST(WallpaperPalette, OfOneColourIsThatColour) {
    for (const int count : {-1, 0, 1, 2, 7, 1000}) {
        const auto palette = paletteOfPixels(filled(violet), count);
        ASSERT_EQ(palette.size(), 1U) << count;
        EXPECT_NEAR(hsbOf(palette[0]).hue, hsb({130 / 255.0, 20 / 255.0, 230 / 255.0}).hue, 1e-9);
        EXPECT_EQ(palette[0].alpha, 1);
    }
}

TEST(WallpaperPalette, HoldsThreeAccentsAlsoWhenTwoColoursAreAskedFor) {
    const auto pixels = striped({red, rose, violet, green});
    EXPECT_EQ(paletteOfPixels(pixels, 2).size(), 3U);
    EXPECT_EQ(paletteOfPixels(pixels, 0).size(), 3U);
    EXPECT_EQ(paletteOfPixels(pixels, 3).size(), 3U);
    EXPECT_EQ(paletteOfPixels(pixels, 4).size(), 4U);
    EXPECT_EQ(paletteOfPixels(pixels, 7).size(), 4U);
}

TEST(WallpaperPalette, OfAGreyPictureIsGreyAndGetsBrighter) {
    std::vector<PicturePixel> greys;
    for (const int level : {10, 60, 110, 160, 210, 255}) {
        const auto component = static_cast<std::uint8_t>(level);
        greys.push_back({component, component, component});
    }
    const auto palette = paletteOfPixels(striped(greys), 7);
    ASSERT_GE(palette.size(), 4U);
    double before = 0;
    for (const auto& color : palette) {
        EXPECT_EQ(hsbOf(color).saturation, 0);
        EXPECT_GE(color.red, 0.46);
        EXPECT_LE(color.red, 0.98);
        EXPECT_GE(color.red, before);
        before = color.red;
    }
}

TEST(WallpaperPalette, AgreesWithASecondImplementation) {
    std::mt19937 random(20'260'601);
    const auto below = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    const auto byte = [&] { return static_cast<std::uint8_t>(below(256)); };
    const auto pixel = [&] {
        return PicturePixel{byte(), byte(), byte(), below(10) == 0 ? byte() : static_cast<std::uint8_t>(255)};
    };
    std::size_t colors = 0;
    constexpr int pictures = 3000;
    for (int i = 0; i < pictures; ++i) {
        // Areas of a few colours with noise around them, of few and of many pixels; some are noise alone.
        std::vector<PicturePixel> parts(1 + below(12));
        std::ranges::generate(parts, pixel);
        const unsigned noise = below(3) == 0 ? 0 : below(60);
        PicturePixels pixels(i % 50 == 0 ? pixelCount : 1 + below(600));
        for (auto& one : pixels) {
            one = i % 7 == 0 ? pixel() : parts[below(static_cast<unsigned>(parts.size()))];
            for (auto* component : {&one.red, &one.green, &one.blue})
                *component = static_cast<std::uint8_t>(
                    std::min(255U, static_cast<unsigned>(*component) + (noise == 0 ? 0 : below(noise))));
            if (i % 11 == 0)
                one.green = one.blue = one.red;
        }
        const int count = static_cast<int>(below(10));
        const auto found = paletteOfPixels(pixels, count);
        const auto expected = naive::Palette(pixels).colors(count);
        ASSERT_EQ(found.size(), expected.size()) << i;
        for (std::size_t c = 0; c < found.size(); ++c) {
            ASSERT_NEAR(found[c].red, expected[c].red, 1e-9) << i;
            ASSERT_NEAR(found[c].green, expected[c].green, 1e-9) << i;
            ASSERT_NEAR(found[c].blue, expected[c].blue, 1e-9) << i;
            ASSERT_EQ(found[c].alpha, 1) << i;
        }
        colors += found.size();
    }
    EXPECT_GT(colors, std::size_t{pictures}); // not all of them were empty
}

} // namespace vantry::WallpaperThemeReader
