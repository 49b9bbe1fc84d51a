#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantry {

/// Whether `text` is well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, nothing beyond U+10FFFF).
[[nodiscard]] bool isUtf8(std::string_view text);

/// `text` with U+FFFD in place of every byte that is not part of well-formed UTF-8.
[[nodiscard]] std::string withReplacementCharacters(std::string_view text);

/// How many characters (code points) `text` has; each byte that is not part of well-formed UTF-8 counts as one.
[[nodiscard]] std::size_t characterCount(std::string_view text);

} // namespace vantry
