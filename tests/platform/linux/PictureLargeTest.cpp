// The largest pictures that must be read, and one that is too large. Making them takes minutes and gigabytes, so these
// tests run only if OMBREL_LARGE_PICTURES is set.

#include "tests/platform/linux/MadePictures.h"
#include "tests/platform/linux/PictureFixture.h"

#include <QImageReader>

#include <cstdlib>

namespace vantry {

namespace {

using LargePicture = PictureFixture;

constexpr QSize largest(16'000, 9'000);

} // namespace

TEST_F(LargePicture, IsReadInEveryFormat) {
    if (!std::getenv("OMBREL_LARGE_PICTURES"))
        GTEST_SKIP() << "OMBREL_LARGE_PICTURES is not set";
    const QImage image = quarteredPicture(quarters, largest);
    for (const char* name : {"a.jpg", "a.png", "a.tif", "a.webp"}) {
        SCOPED_TRACE(name);
        expectQuarters(read(save(image, name, 90)), quarters, 6);
    }
    SCOPED_TRACE("lossless WebP, GIF");
    expectQuarters(read(save(image, "b.webp", 100)), quarters, 0);
    expectQuarters(read(save(gifOf({image}), "a.gif")), quarters, 30);
    expectQuarters(read(save(image.convertToFormat(QImage::Format_Indexed8), "b.png")), quarters, 6);
    expectQuarters(read(save(image.convertToFormat(QImage::Format_ARGB32), "c.png")), quarters, 0);
}

TEST_F(LargePicture, OfTheLargestCamerasIsReadInHeic) {
    if (!std::getenv("OMBREL_LARGE_PICTURES") || !canEncodeHeic())
        GTEST_SKIP() << "OMBREL_LARGE_PICTURES is not set, or libheif encodes no HEIC here";
    writeHeic(quarteredPicture(quarters, QSize(12'000, 9'000)), root / "a.heic");
    expectQuarters(read(root / "a.heic"), quarters, 6);
}

// Smaller than the others: libjxl keeps 32 bits a component.
TEST_F(LargePicture, OfTheLargestScreensIsReadInJpegXl) {
    if (!std::getenv("OMBREL_LARGE_PICTURES"))
        GTEST_SKIP() << "OMBREL_LARGE_PICTURES is not set";
    for (const bool isLossless : {true, false}) {
        SCOPED_TRACE(isLossless);
        writeFile(root / "a.jxl", jxlOf(quarteredPicture(quarters, QSize(7'680, 4'320)), {.isLossless = isLossless}));
        expectQuarters(read(root / "a.jxl"), quarters, 6);
    }
}

TEST_F(LargePicture, BeyondTheMemoryLimitIsNotRead) {
    if (!std::getenv("OMBREL_LARGE_PICTURES"))
        GTEST_SKIP() << "OMBREL_LARGE_PICTURES is not set";
    QImage image(20'000, 11'000, QImage::Format_RGB32); // 840 MB
    image.fill(Qt::red);
    EXPECT_FALSE(read(save(image, "a.png")));
    EXPECT_TRUE(read(save(image, "a.jpg"))) << "its decoder needs no such memory";
}

} // namespace vantry
