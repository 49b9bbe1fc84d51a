#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vantry {

/// What the worker says about one file: the texts under the keys asked for, which are absent for what is no list.
struct PropertyListPayload {
    std::optional<std::map<std::string, std::string>> texts;

    bool operator==(const PropertyListPayload&) const = default;
};

/// What one of them takes at most as a line; it does not write a longer one.
inline constexpr std::size_t longestPropertyListLine = 1 << 20;

/// One line, with its end: {"KEY":"text",…}, or null. One that would be too long is null. Texts are UTF-8.
[[nodiscard]] std::string encoded(const PropertyListPayload& payload);

/// Trusts nothing: gives a payload for exactly what is written for `keys`, without the line's end, with texts that a
/// property list is read for; for anything else nothing. Takes memory in proportion to the line at most.
[[nodiscard]] std::optional<PropertyListPayload> decodedPropertyList(std::string_view line,
                                                                     std::span<const std::string> keys);

} // namespace vantry
