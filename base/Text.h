#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vantry {

/// "1 file", "2 files".
[[nodiscard]] std::string countText(std::size_t count, std::string_view noun);

/// The texts with " · " between them; empty ones are left out.
[[nodiscard]] std::string joinedTexts(std::initializer_list<std::string_view> texts);

/// `text` with A to Z in lower case; all other bytes stay.
[[nodiscard]] std::string asciiLowercase(std::string text);

/// A path for a URI (RFC 3986): all bytes except unreserved ones and slashes become "%XX".
[[nodiscard]] std::string percentEncoded(std::string_view path);

/// The length in bytes of the first character of `text`, which is UTF-8, if it could move a terminal's cursor, break a
/// line, or make one name look like another: a control or direction character. 0 for any other character.
[[nodiscard]] std::size_t deceptiveLength(std::string_view text);

/// A name that can stand in a line with other texts: U+FFFD replaces bytes that are not UTF-8 and everything that
/// `deceptiveLength` counts.
[[nodiscard]] std::string singleLine(std::string_view name);

} // namespace vantry
