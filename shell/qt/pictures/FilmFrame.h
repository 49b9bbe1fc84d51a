#pragma once

#include "platform/Picture.h"

#include <optional>

namespace vantry {

/// See `FilmDecoder`.
[[nodiscard]] std::optional<PicturePixels> decodeFilm(int file);

} // namespace vantry
