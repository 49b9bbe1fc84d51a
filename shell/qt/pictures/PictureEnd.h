#pragma once

#include <cstddef>
#include <span>

namespace vantry {

// Qt fills in for what was cut off of these, and says nothing.

/// Whether the contents of a JPEG file have their end. What follows it does not matter.
[[nodiscard]] bool isWholeJpeg(std::span<const std::byte> contents);

/// Whether the contents of a GIF file have the end of the first frame.
[[nodiscard]] bool hasWholeGifFrame(std::span<const std::byte> contents);

} // namespace vantry
