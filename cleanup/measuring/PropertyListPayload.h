#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vantry {

/// The worker's answer about one file: the texts under the keys asked for; absent if it is not a property list.
struct PropertyListPayload {
    std::optional<std::map<std::string, std::string>> texts;

    bool operator==(const PropertyListPayload&) const = default;
};

/// The longest line of a payload.
inline constexpr std::size_t longestPropertyListLine = 1 << 20;

/// One line with its line break: {"KEY":"text",…}, or null, which also replaces a line that would be too long. Texts
/// are UTF-8.
[[nodiscard]] std::string encoded(const PropertyListPayload& payload);

/// Trusts nothing: decodes only what the encoder writes for `keys`, without the line break and with texts as a property
/// list is read for; absent for anything else. Its memory is bounded by a multiple of the line.
[[nodiscard]] std::optional<PropertyListPayload> decodedPropertyList(std::string_view line,
                                                                     std::span<const std::string> keys);

} // namespace vantry
