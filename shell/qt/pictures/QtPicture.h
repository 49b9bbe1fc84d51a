#pragma once

#include "platform/Picture.h"

#include <cstddef>
#include <optional>
#include <span>

namespace vantry {

/// A GIF, JPEG, PNG, TIFF or SVG; nothing else of what Qt reads, because what is less common is less well proven,
/// and some formats cannot be told from other files. Absent when there is no such picture or it is
/// damaged.
[[nodiscard]] std::optional<PicturePixels> decodeWithQt(std::span<const std::byte> contents);

} // namespace vantry
