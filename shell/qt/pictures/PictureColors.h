#pragma once

#include "platform/Picture.h"

#include <QColorSpace>
#include <QImage>

namespace vantry {

/// The colour space of these code points of ITU-T H.273, which HEIF and films name theirs by. The transfer functions of
/// television and of high dynamic range count as sRGB's: nothing is mapped to another brightness.
[[nodiscard]] QColorSpace colorSpaceOf(int primaries, int transferFunction);

/// The pixels of a square of `pictureSide` whose colours are of `space`; of sRGB if that is not valid.
[[nodiscard]] PicturePixels pixelsInSrgb(QImage square, const QColorSpace& space);

} // namespace vantry
