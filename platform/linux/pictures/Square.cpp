#include "platform/linux/pictures/Decoders.h"

#include <QPointF>
#include <algorithm>
#include <cstring>
#include <utility>

namespace vantry {

namespace {

QColorSpace withPrimaries(int primaries, QColorSpace::TransferFunction function, float gamma) {
    constexpr int bt2020 = 9;
    constexpr int displayP3 = 12;
    if (primaries == displayP3)
        return {QColorSpace::Primaries::DciP3D65, function, gamma};
    if (primaries != bt2020)
        return {QColorSpace::Primaries::SRgb, function, gamma};
    const QPointF d65(0.3127, 0.3290);
    return {d65, QPointF(0.708, 0.292), QPointF(0.170, 0.797), QPointF(0.131, 0.046), function, gamma};
}

} // namespace

QColorSpace colorSpaceOf(int primaries, int transferFunction) {
    using Function = QColorSpace::TransferFunction;
    switch (transferFunction) {
    case 4: return withPrimaries(primaries, Function::Gamma, 2.2F);
    case 5: return withPrimaries(primaries, Function::Gamma, 2.8F);
    case 8: return withPrimaries(primaries, Function::Linear, 0);
    default: return withPrimaries(primaries, Function::SRgb, 0);
    }
}

QImage averagedSquare(const QImage& image) {
    constexpr auto format = QImage::Format_RGBA64_Premultiplied; // as exact as any format, and averages by alpha
    QImage square(squareSide, squareSide, format);
    // Strip by strip: a large picture fits into memory only once.
    const auto topOf = [&](int y) { return static_cast<int>(qint64{y} * image.height() / squareSide); };
    for (int y = 0; y < squareSide; ++y) {
        const int top = topOf(y);
        const int bottom = std::max(top + 1, topOf(y + 1));
        QImage strip(image.constScanLine(top), image.width(), bottom - top, image.bytesPerLine(), image.format());
        strip.setColorTable(image.colorTable());
        strip = std::move(strip).convertToFormat(format).scaled(squareSide, 1, Qt::IgnoreAspectRatio,
                                                                Qt::SmoothTransformation);
        std::memcpy(square.scanLine(y), strip.constScanLine(0), static_cast<std::size_t>(square.bytesPerLine()));
    }
    return square;
}

PicturePixels pixelsInSrgb(QImage square, const QColorSpace& space) {
    const QColorSpace srgb(QColorSpace::SRgb);
    if (space.isValid() && space != srgb) {
        square.setColorSpace(space);
        square.convertToColorSpace(srgb);
    }
    square = std::move(square).convertToFormat(QImage::Format_RGBA8888);
    PicturePixels pixels(pictureSide * pictureSide);
    static_assert(sizeof(PicturePixel) == 4);
    for (std::size_t y = 0; y < pictureSide; ++y)
        std::memcpy(&pixels[y * pictureSide], square.constScanLine(static_cast<int>(y)),
                    pictureSide * sizeof(PicturePixel));
    return pixels;
}

} // namespace vantry
