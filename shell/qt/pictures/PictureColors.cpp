#include "shell/qt/pictures/PictureColors.h"

#include <QPointF>
#include <cstring>

namespace vantry {

namespace {

// Code points of H.273.
constexpr int bt2020Primaries = 9;
constexpr int displayP3Primaries = 12;
constexpr int gamma22 = 4;
constexpr int gamma28 = 5;
constexpr int linear = 8;

QColorSpace withPrimaries(int primaries, QColorSpace::TransferFunction function, float gamma) {
    if (primaries == displayP3Primaries)
        return {QColorSpace::Primaries::DciP3D65, function, gamma};
    if (primaries != bt2020Primaries)
        return {QColorSpace::Primaries::SRgb, function, gamma};
    const QPointF d65(0.3127, 0.3290);
    return {d65, QPointF(0.708, 0.292), QPointF(0.170, 0.797), QPointF(0.131, 0.046), function, gamma};
}

} // namespace

QColorSpace colorSpaceOf(int primaries, int transferFunction) {
    using Function = QColorSpace::TransferFunction;
    switch (transferFunction) {
    case gamma22: return withPrimaries(primaries, Function::Gamma, 2.2F);
    case gamma28: return withPrimaries(primaries, Function::Gamma, 2.8F);
    case linear: return withPrimaries(primaries, Function::Linear, 0);
    default: return withPrimaries(primaries, Function::SRgb, 0);
    }
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
