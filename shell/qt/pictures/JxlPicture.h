#pragma once

#include "platform/Picture.h"

#include <cstddef>
#include <optional>
#include <span>

namespace vantry {

/// Whether these are the contents of a JPEG XL file, by their first bytes.
[[nodiscard]] bool isJxl(std::span<const std::byte> contents);

/// Of an animation the first frame. Absent when it is damaged or its end is missing.
[[nodiscard]] std::optional<PicturePixels> decodeJxl(std::span<const std::byte> contents);

} // namespace vantry
