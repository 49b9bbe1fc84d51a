#pragma once

#include "platform/Picture.h"

#include <cstddef>
#include <optional>
#include <span>

namespace vantry {

/// Whether these are the contents of a WebP file, by their first bytes.
[[nodiscard]] bool isWebp(std::span<const std::byte> contents);

/// Scaled while it is decoded, which Qt does not do. Of an animation the first frame. Absent when it is damaged.
[[nodiscard]] std::optional<PicturePixels> decodeWebp(std::span<const std::byte> contents);

} // namespace vantry
