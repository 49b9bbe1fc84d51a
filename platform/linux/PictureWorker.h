#pragma once

#include "platform/Picture.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace vantry {

/// Makes a process of this executable a picture worker when it is the first argument.
///   --picture-worker FILE   writes FILE's picture to standard output, four bytes a pixel: red, green, blue, alpha;
///   ends
///                           with another status than 0 when there is none
inline constexpr const char* pictureWorkerFlag = "--picture-worker";

/// `readPicture` by `executable` as worker, which is ended when it takes longer than `patience`.
[[nodiscard]] std::optional<PicturePixels> readPictureInWorker(const std::filesystem::path& executable,
                                                               const std::filesystem::path& file,
                                                               std::chrono::milliseconds patience);

} // namespace vantry
