#pragma once

#include <string_view>

namespace vantry {

/// Whether `text` is well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, nothing beyond U+10FFFF).
[[nodiscard]] bool isUtf8(std::string_view text);

} // namespace vantry
