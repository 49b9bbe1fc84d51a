#pragma once

#include "base/Text.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// One pixel in sRGB, 8 bits a component, alpha not premultiplied.
struct PicturePixel {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 255;

    bool operator==(const PicturePixel&) const = default;
};

inline constexpr std::size_t pictureSide = 128; ///< pixels

/// A whole picture or a frame of a film, scaled to a square of `pictureSide`, row by row from the top: `pictureSide`
/// times `pictureSide` pixels.
using PicturePixels = std::vector<PicturePixel>;

/// By its extension, in any case.
[[nodiscard]] inline bool isFilm(const std::filesystem::path& file) {
    const std::string extension = asciiLowercase(file.extension().native());
    return extension == ".mov" || extension == ".mp4" || extension == ".m4v";
}

/// The picture in `file`, upright. The contents tell its format; of several pictures the first one. A file with a
/// film's extension (in any case) gives the key frame at or before 75 seconds, else 10, else the first one. Absent for
/// what is not a regular file or not such a picture, is damaged (a JPEG or GIF that was cut off shows what is there),
/// takes more than 768 MB to decode, is over 1 GB and not a film, or takes too long. On Linux a worker process decodes
/// it, so that no picture can harm this one. Blocking, for half a minute at most; any thread but the main one.
[[nodiscard]] std::optional<PicturePixels> readPicture(const std::filesystem::path& file);

/// Decodes a picture if another process started this one to do that for its `readPicture`; absent if not. Otherwise the
/// process is to exit with this status at once, without running the exit handlers of libraries. `arguments` are the
/// process's, without its name. Gives up the right to change files and most memory for good. On macOS always absent.
/// Main thread, before anything else.
[[nodiscard]] std::optional<int> runPictureWorkerIfRequested(std::span<const std::string> arguments);

} // namespace vantry
