#pragma once

#include "platform/Picture.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>

namespace vantry {

/// Makes a process of this executable a picture worker when it is the first argument.
///   --picture-worker FILE   writes FILE's picture to standard output, four bytes a pixel: red, green, blue, alpha;
///   ends
///                           with another status than 0 when there is none
inline constexpr const char* pictureWorkerFlag = "--picture-worker";

/// `readPicture` by `executable` as worker. One that has not ended after `patience` is asked to end, then killed; one
/// that survives even that is left behind, and reaped when it has ended and a picture is read again.
[[nodiscard]] std::optional<PicturePixels> readPictureInWorker(const std::filesystem::path& executable,
                                                               const std::filesystem::path& file,
                                                               std::chrono::milliseconds patience);

/// Workers that were left behind and have not ended yet.
[[nodiscard]] std::size_t abandonedPictureWorkers();

} // namespace vantry
