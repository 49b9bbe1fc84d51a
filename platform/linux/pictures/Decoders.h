#pragma once

#include "platform/Picture.h"

#include <QColorSpace>
#include <QImage>
#include <cstddef>
#include <optional>
#include <span>

namespace vantry {

using PictureContents = std::span<const std::byte>;

inline constexpr int squareSide = static_cast<int>(pictureSide);

// Whether the contents of a file are of this format, by their first bytes.

[[nodiscard]] bool isHeif(PictureContents contents); ///< HEIC, and AVIF where libheif reads it
[[nodiscard]] bool isJxl(PictureContents contents);
[[nodiscard]] bool isWebp(PictureContents contents);

// The picture in the contents of a file: the primary one, or the first frame of an animation. Absent when it cannot be
// decoded.

[[nodiscard]] std::optional<PicturePixels> decodeHeif(PictureContents contents);
[[nodiscard]] std::optional<PicturePixels> decodeJxl(PictureContents contents);
[[nodiscard]] std::optional<PicturePixels> decodeWebp(PictureContents contents);
/// A GIF, JPEG, PNG, TIFF or SVG. Qt reads more formats, but those are less well proven, and some of them cannot be
/// told from other files.
[[nodiscard]] std::optional<PicturePixels> decodeWithQt(PictureContents contents);
/// See `FilmDecoder`.
[[nodiscard]] std::optional<PicturePixels> decodeFilm(int file);

/// Averages the picture down to a square of `squareSide`, weighted by alpha. Takes little memory beside `image`.
[[nodiscard]] QImage averagedSquare(const QImage& image);

/// The pixels of a square whose colours are in `space`, or in sRGB if that is not valid.
[[nodiscard]] PicturePixels pixelsInSrgb(QImage square, const QColorSpace& space);

/// The colour space with these code points of ITU-T H.273, which HEIF and films use. The transfer functions of
/// television and of high dynamic range count as that of sRGB: no brightness is mapped.
[[nodiscard]] QColorSpace colorSpaceOf(int primaries, int transferFunction);

} // namespace vantry
