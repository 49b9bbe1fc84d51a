#pragma once

#include "platform/Picture.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

namespace vantry {

/// As the first argument it makes a process of this executable a picture worker. `--picture-worker FILE` writes FILE's
/// picture to standard output, four bytes a pixel: red, green, blue, alpha. Exits with a status other than 0 when there
/// is none.
inline constexpr const char* pictureWorkerFlag = "--picture-worker";

/// `readPicture` with `executable` as the worker, which is killed when it takes longer than `patience`.
[[nodiscard]] std::optional<PicturePixels> readPictureInWorker(const std::filesystem::path& executable,
                                                               const std::filesystem::path& file,
                                                               std::chrono::milliseconds patience);

// What the module "libombrel-pictures.so" offers. Hostile input may crash its decoders: only for worker processes.

/// The first or only picture in the contents of a file of any format; absent when there is none or it is damaged.
using PictureDecoder = std::optional<PicturePixels>(std::span<const std::byte> contents);
/// A frame of the film that is open as `file`, see `readPicture`. Moves the descriptor's position.
using FilmDecoder = std::optional<PicturePixels>(int file);

/// The names under which the module offers them.
inline constexpr const char* pictureDecoderName = "ombrelDecodePicture";
inline constexpr const char* filmDecoderName = "ombrelDecodeFilm";

} // namespace vantry
