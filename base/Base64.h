#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// Base64 with padding (RFC 4648, section 4).
[[nodiscard]] std::string base64Text(std::string_view bytes);

/// The bytes of such a text; absent for anything that `base64Text` would not have written.
[[nodiscard]] std::optional<std::string> bytesOfBase64(std::string_view text);

} // namespace vantry
