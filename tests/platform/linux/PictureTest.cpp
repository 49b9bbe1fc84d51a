// Valid pictures: each format, orientation and colours.

#include "tests/platform/linux/MadePictures.h"
#include "tests/platform/linux/PictureFixture.h"

#include <QColor>
#include <QColorSpace>
#include <QColorTransform>
#include <QImageWriter>

// The HEIC encoder leaks.
// NOLINTNEXTLINE(readability-identifier-naming): named by the leak sanitizer
extern "C" const char* __lsan_default_suppressions() { return "leak:libx265"; }

namespace vantry {

namespace {

using Picture = PictureFixture;

// For each EXIF orientation the quarter of the stored picture that belongs to each quarter of the upright one.
constexpr struct {
    int orientation;
    std::array<std::size_t, 4> from;
} orientations[] = {
    {1, {0, 1, 2, 3}}, {2, {1, 0, 3, 2}}, {3, {3, 2, 1, 0}}, {4, {2, 3, 0, 1}},
    {5, {0, 2, 1, 3}}, {6, {2, 0, 3, 1}}, {7, {3, 1, 2, 0}}, {8, {1, 3, 0, 2}},
};

Quarters turned(const std::array<std::size_t, 4>& from) {
    return {quarters[from[0]], quarters[from[1]], quarters[from[2]], quarters[from[3]]};
}

Quarters inSrgb(const Quarters& colors, const QColorSpace& space) {
    const auto transform = space.transformationToColorSpace(QColorSpace(QColorSpace::SRgb));
    Quarters converted{};
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const QColor color = transform.map(QColor(colors[i].red, colors[i].green, colors[i].blue));
        converted[i] = {static_cast<std::uint8_t>(color.red()), static_cast<std::uint8_t>(color.green()),
                        static_cast<std::uint8_t>(color.blue())};
    }
    return converted;
}

// The conversion changes all of them, and all of them stay within sRGB.
constexpr Quarters muted{{{170, 80, 70}, {80, 150, 90}, {80, 80, 170}, {180, 150, 70}}};

} // namespace

TEST_F(Picture, IsReadInEveryFormatWhateverItsSize) {
    for (const QSize size : {QSize(400, 300), QSize(1000, 1400), QSize(257, 129), QSize(64, 40)})
        for (const char* name : {"a.png", "a.jpg", "a.jpeg", "a.tif", "a.tiff", "a.webp", "A.PNG", "A.JPG"}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(size.width()));
            const bool isExact = std::string_view(name).find("p") == 2 && name[3] == 'n';
            expectQuarters(read(save(quarteredPicture(quarters, size), name, 98)), quarters, isExact ? 0 : 6);
        }
}

TEST_F(Picture, InHeicIsRead) {
    if (!canEncodeHeic())
        GTEST_SKIP() << "libheif encodes no HEIC here";
    for (const QSize size : {QSize(400, 300), QSize(1001, 701), QSize(64, 40)})
        for (const char* name : {"a.heic", "a.heif", "A.HEIC"}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(size.width()));
            writeHeic(quarteredPicture(quarters, size), root / name);
            expectQuarters(read(root / name), quarters, 6);
        }
}

TEST_F(Picture, InJpegXlIsRead) {
    for (const QSize size : {QSize(400, 300), QSize(1001, 701), QSize(64, 40)})
        for (const bool isLossless : {true, false})
            for (const bool isContained : {true, false}) {
                SCOPED_TRACE(testing::Message() << size.width() << isLossless << isContained);
                writeFile(root / "a.jxl", jxlOf(quarteredPicture(quarters, size),
                                                {.isLossless = isLossless, .isContained = isContained}));
                expectQuarters(read(root / "a.jxl"), quarters, isLossless ? 0 : 12); // small ones have edges all over
            }
}

TEST_F(Picture, OfAnAnimatedGifIsTheFirstFrame) {
    constexpr Quarters first{{{204, 51, 51}, {51, 153, 51}, {51, 51, 204}, {255, 204, 51}}};
    constexpr Quarters second{{{0, 0, 0}, {0, 0, 0}, {255, 255, 255}, {0, 0, 0}}};
    expectQuarters(read(save(gifOf({quarteredPicture(first), quarteredPicture(second)}), "a.gif")), first, 0);
}

TEST_F(Picture, IsReadByItsContentsNotByItsName) {
    const struct {
        const char* format;
        const char* name;
    } cases[] = {{"png", "a.jpg"},  {"jpg", "a.png"}, {"png", "a.heic"},
                 {"webp", "a.gif"}, {"tif", "a"},     {"jpg", "a.b c"}};
    for (const auto& [format, name] : cases) {
        const auto file = save(quarteredPicture(), std::string("original.") + format, 98);
        std::filesystem::rename(file, root / name);
        SCOPED_TRACE(name);
        expectQuarters(read(root / name), quarters, 6);
    }
    writeFile(root / "jxl.png", jxlOf(quarteredPicture()));
    expectQuarters(read(root / "jxl.png"), quarters, 0);
    if (canEncodeHeic()) {
        writeHeic(quarteredPicture(), root / "heic.png");
        expectQuarters(read(root / "heic.png"), quarters, 6);
    }
}

TEST_F(Picture, MayHaveAnyNameAndBeBehindALink) {
    for (const char* name : {"--picture-worker", "a\nb", " ", "\xff\xfe.png", "-"}) {
        const auto file = save(quarteredPicture(), "plain.png");
        std::filesystem::rename(file, root / name);
        expectQuarters(read(root / name), quarters, 0);
    }
    std::filesystem::create_symlink("-", root / "link.png");
    expectQuarters(read(root / "link.png"), quarters, 0);
}

TEST_F(Picture, FillsTheSquareWithAverages) {
    QImage stripes(1280, 640, QImage::Format_RGB32);
    for (int y = 0; y < stripes.height(); ++y)
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, x % 2 == 0 ? qRgb(0, 0, 0) : qRgb(200, 100, 50));
    const auto pixels = read(save(stripes, "a.png"));
    ASSERT_TRUE(pixels);
    for (const auto& pixel : *pixels)
        ASSERT_EQ(pixel, (PicturePixel{100, 50, 25, 255}));
}

TEST_F(Picture, KeepsItsTransparency) {
    constexpr Quarters colors{{{200, 40, 40, 255}, {40, 160, 60, 128}, {40, 60, 190, 64}, {0, 0, 0, 0}}};
    for (const char* name : {"a.png", "a.tif", "a.webp"}) {
        SCOPED_TRACE(name);
        expectQuarters(read(save(quarteredPicture(colors), name, 100)), colors, 3);
    }
    writeFile(root / "a.jxl", jxlOf(quarteredPicture(colors)));
    expectQuarters(read(root / "a.jxl"), colors, 3);
    if (canEncodeHeic()) {
        writeHeic(quarteredPicture(colors), root / "a.heic");
        expectQuarters(read(root / "a.heic"), colors, 6);
    }
}

TEST_F(Picture, TakesNoColorFromWhatIsTransparent) {
    QImage stripes(1280, 1280, QImage::Format_ARGB32);
    for (int y = 0; y < stripes.height(); ++y)
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, y % 2 == 0 ? qRgba(0, 255, 0, 0) : qRgba(200, 100, 50, 255));
    const auto pixels = read(save(stripes, "a.png"));
    ASSERT_TRUE(pixels);
    for (const auto& pixel : *pixels)
        ASSERT_LE(difference(pixel, {200, 100, 50, 128}), 1); // half of 255 is rounded either way
}

TEST_F(Picture, OfAnyDepthIsRead) {
    constexpr Quarters grey{{{10, 10, 10}, {90, 90, 90}, {200, 200, 200}, {255, 255, 255}}};
    const struct {
        QImage::Format format;
        const Quarters& colors;
    } cases[] = {
        {QImage::Format_Grayscale8, grey}, {QImage::Format_Grayscale16, grey}, {QImage::Format_Indexed8, quarters},
        {QImage::Format_RGBX64, quarters}, {QImage::Format_RGBA64, quarters},
    };
    for (const auto& [format, colors] : cases)
        for (const char* name : {"a.png", "a.tif", "a.jpg"}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(format));
            QImage image = quarteredPicture(colors).convertToFormat(format);
            expectQuarters(read(save(image, name, 98)), colors, 6);
        }
    const QImage bits = quarteredPicture({{{0, 0, 0}, {255, 255, 255}, {255, 255, 255}, {0, 0, 0}}})
                            .convertToFormat(QImage::Format_Mono);
    expectQuarters(read(save(bits, "a.png")), {{{0, 0, 0}, {255, 255, 255}, {255, 255, 255}, {0, 0, 0}}}, 0);
}

TEST_F(Picture, IsTurnedUpright) {
    const std::string jpeg = readFile(save(quarteredPicture(), "original.jpg", 98));
    for (const auto& [orientation, from] : orientations) {
        SCOPED_TRACE(orientation);
        expectQuarters(read(save(withOrientation(jpeg, orientation), "a.jpg")), turned(from), 6);
    }
}

TEST_F(Picture, InTiffIsTurnedUpright) {
    for (const auto& [transformation, from] :
         {std::pair{QImageIOHandler::TransformationRotate90, 6}, std::pair{QImageIOHandler::TransformationRotate180, 3},
          std::pair{QImageIOHandler::TransformationMirror, 2}}) {
        QImageWriter writer(QString::fromStdString(root / "a.tif"));
        writer.setTransformation(transformation);
        ASSERT_TRUE(writer.write(quarteredPicture()));
        SCOPED_TRACE(from);
        expectQuarters(read(root / "a.tif"), turned(orientations[from - 1].from), 0);
    }
}

TEST_F(Picture, InHeicIsTurnedUpright) {
    if (!canEncodeHeic())
        GTEST_SKIP() << "libheif encodes no HEIC here";
    for (const auto& [orientation, from] : orientations) {
        SCOPED_TRACE(orientation);
        writeHeic(quarteredPicture(), root / "a.heic", {.orientation = static_cast<heif_orientation>(orientation)});
        expectQuarters(read(root / "a.heic"), turned(from), 6);
    }
}

TEST_F(Picture, InJpegXlIsTurnedUpright) {
    for (const auto& [orientation, from] : orientations) {
        SCOPED_TRACE(orientation);
        writeFile(root / "a.jxl", jxlOf(quarteredPicture(), {.orientation = static_cast<JxlOrientation>(orientation)}));
        expectQuarters(read(root / "a.jxl"), turned(from), 0);
    }
}

TEST_F(Picture, IsConvertedToSrgb) {
    const QColorSpace p3(QColorSpace::DisplayP3);
    // One that swaps red and blue.
    const QColorSpace swapped(QPointF(0.3127, 0.3290), QPointF(0.15, 0.06), QPointF(0.30, 0.60), QPointF(0.64, 0.33),
                              QColorSpace::TransferFunction::SRgb);
    for (const QColorSpace& space : {p3, swapped}) {
        const Quarters expected = inSrgb(muted, space);
        ASSERT_GE(difference(expected[0], muted[0]), 10) << "the test would not notice";
        QImage image = quarteredPicture(muted);
        image.setColorSpace(space);
        for (const char* name : {"a.png", "a.jpg", "a.tif", "a.webp"}) {
            SCOPED_TRACE(name);
            expectQuarters(read(save(image, name, 100)), expected, 4);
        }
        for (const bool isLossless : {true, false}) {
            SCOPED_TRACE(isLossless);
            writeFile(root / "a.jxl",
                      jxlOf(quarteredPicture(muted), {.isLossless = isLossless, .icc = space.iccProfile()}));
            expectQuarters(read(root / "a.jxl"), expected, 6);
        }
        if (canEncodeHeic()) {
            writeHeic(quarteredPicture(muted), root / "a.heic", {.icc = space.iccProfile()});
            expectQuarters(read(root / "a.heic"), expected, 6);
        }
    }
}

TEST_F(Picture, InGreyMayHaveAProfile) {
    const QImage image = quarteredPicture({{{50, 50, 50}, {100, 100, 100}, {150, 150, 150}, {255, 255, 255}}});
    const auto jpeg = readFile(save(image.convertToFormat(QImage::Format_Grayscale8), "original.jpg", 98));
    // 50 of 255 in linear light is 122 in sRGB.
    expectQuarters(read(save(withLinearGreyProfile(jpeg), "a.jpg")),
                   {{{122, 122, 122}, {168, 168, 168}, {201, 201, 201}, {255, 255, 255}}}, 4);
}

TEST_F(Picture, WithABrokenProfileIsTakenForSrgb) {
    QImage image = quarteredPicture();
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    std::string jpeg = readFile(save(image, "original.jpg", 98));
    const auto at = jpeg.find("acsp");
    ASSERT_NE(at, std::string::npos);
    jpeg.replace(at, 4, "xxxx");
    expectQuarters(read(save(jpeg, "a.jpg")), quarters, 6);
}

TEST_F(Picture, InHeicHasTheColorsOfItsProfile) {
    if (!canEncodeHeic())
        GTEST_SKIP() << "libheif encodes no HEIC here";
    const QColorSpace p3(QColorSpace::DisplayP3);
    const struct {
        HeicOptions options;
        Quarters expected;
    } cases[] = {
        {{.primaries = heif_color_primaries_ITU_R_BT_709_5}, muted},
        {{.primaries = heif_color_primaries_ITU_R_BT_709_5, .matrix = heif_matrix_coefficients_ITU_R_BT_601_6}, muted},
        {{.primaries = heif_color_primaries_ITU_R_BT_709_5,
          .matrix = heif_matrix_coefficients_ITU_R_BT_2020_2_non_constant_luminance},
         muted},
        {{.primaries = heif_color_primaries_ITU_R_BT_709_5, .isFullRange = false}, muted},
        {{.primaries = heif_color_primaries_SMPTE_EG_432_1}, inSrgb(muted, p3)},
    };
    for (const auto& [options, expected] : cases) {
        SCOPED_TRACE(std::to_string(*options.primaries) + " " + std::to_string(options.matrix));
        writeHeic(quarteredPicture(muted), root / "a.heic", options);
        expectQuarters(read(root / "a.heic"), expected, 6);
    }
}

TEST_F(Picture, InSvgIsDrawn) {
    const std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='40'>"
                            "<rect width='40' height='40' fill='#c82828'/></svg>";
    const auto pixels = read(save(svg, "a.svg"));
    ASSERT_TRUE(pixels);
    EXPECT_EQ(pixels->front(), quarters.front());
}

} // namespace vantry
