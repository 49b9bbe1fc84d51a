#pragma once

#include <array>
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

/// The extensions of films, in lower case.
inline constexpr std::array filmExtensions{".mov", ".mp4", ".m4v"};

/// The picture in `file`, upright, or of a film (by its extension, in any case) the key frame at or before 75 seconds,
/// else 10, else the first one. What kind of picture it is its contents tell. Of a picture of many the first one.
/// Absent for what is no regular file, no such picture, cut off or damaged, larger than 768 MB can decode (and no film
/// and larger than 1 GB), or not decoded in time. On Linux a worker process decodes it, so that no picture can harm
/// this one. Blocking, for half a minute at most; any thread but the main one.
[[nodiscard]] std::optional<PicturePixels> readPicture(const std::filesystem::path& file);

/// Whether this process was started to decode a picture for `readPicture` of another one; absent if not. Otherwise its
/// job is done when this returns, and this is the status that it is to end with at once, without running what
/// libraries left for the end. `arguments` are the process's, without its name. Gives up the right to change files and
/// most memory for good. On macOS always absent. Main thread, before any other.
[[nodiscard]] std::optional<int> runPictureWorkerIfRequested(std::span<const std::string> arguments);

} // namespace vantry
