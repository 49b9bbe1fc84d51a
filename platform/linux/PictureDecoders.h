#pragma once

#include "platform/Picture.h"

#include <cstddef>
#include <optional>
#include <span>

namespace vantry {

// What the module "libombrel-pictures.so" offers. Its decoders may crash over hostile input: for worker processes only.

/// The first or only picture in the contents of a file, whatever its format; absent when there is none or its end is
/// missing.
using PictureDecoder = std::optional<PicturePixels>(std::span<const std::byte> contents);
/// A frame of the film that the descriptor `file` is open for, see `readPicture`. Moves the descriptor's position.
using FilmDecoder = std::optional<PicturePixels>(int file);

/// The names under which the module offers them.
inline constexpr const char* pictureDecoderName = "ombrelDecodePicture";
inline constexpr const char* filmDecoderName = "ombrelDecodeFilm";

} // namespace vantry
