#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vantry {

/// The two formats of `propertyListTexts`, each with its bounds but for that on the size; absent where that fails. The
/// readers are Ombrel's own: libplist is not made for input that wants to harm it, and a check that is to say
/// beforehand what libplist will do would have to read everything just as libplist does.
[[nodiscard]] std::optional<std::map<std::string, std::string>>
binaryPropertyListTexts(std::string_view bytes, std::span<const std::string> keys);
[[nodiscard]] std::optional<std::map<std::string, std::string>> xmlPropertyListTexts(std::string_view bytes,
                                                                                     std::span<const std::string> keys);

/// Not for surrogates and what is beyond U+10FFFF.
void appendUtf8(std::string& text, char32_t codePoint);

inline constexpr std::string_view binaryPropertyListMagic = "bplist00";

} // namespace vantry
