#pragma once

#include "platform/Picture.h"

#include <cstddef>
#include <optional>
#include <span>

namespace vantry {

/// Whether these are the contents of a HEIF file (HEIC, and AVIF where libheif reads it), by their first bytes.
[[nodiscard]] bool isHeif(std::span<const std::byte> contents);

/// The primary picture; absent when it is damaged.
[[nodiscard]] std::optional<PicturePixels> decodeHeif(std::span<const std::byte> contents);

} // namespace vantry
