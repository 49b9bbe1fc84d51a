#pragma once

#include "base/Result.h"

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantry {

/// A property list. Texts are UTF-8; a dictionary's keys are different from each other.
struct PropertyList {
    struct Entry;
    using Array = std::vector<PropertyList>;
    using Dictionary = std::vector<Entry>;

    std::variant<bool, std::string, Array, Dictionary> value;
};

struct PropertyList::Entry {
    std::string key;
    PropertyList value;
};

/// The list as an XML property list (CoreFoundation on macOS, libplist elsewhere). Fails for a text that is no UTF-8 or
/// holds a character that XML cannot. Any thread.
[[nodiscard]] Result<std::string> xmlPropertyList(const PropertyList& list);

/// What `propertyListTexts` reads at most, so that no list, whoever wrote it, takes much time or memory.
inline constexpr std::size_t largestPropertyList = 8 << 20;      ///< bytes
inline constexpr std::size_t deepestPropertyList = 64;           ///< arrays and dictionaries in one another
inline constexpr std::size_t mostPropertyListValues = 100'000;   ///< keys and values, shared ones once for each use
inline constexpr std::size_t longestPropertyListText = 64 << 10; ///< bytes in UTF-8

/// The texts under `keys` of the outermost dictionary of a list that is XML in UTF-8 or binary. A key has none when
/// its value, the last one of a key that comes twice, is no text, a longer one, no valid Unicode or holds a zero.
/// Fails for everything else and beyond the bounds above. What a number, a date or data says is not looked at. On macOS
/// the system reads the list, which takes as much memory as it likes before the bounds are looked at. Any thread.
[[nodiscard]] Result<std::map<std::string, std::string>> propertyListTexts(std::string_view bytes,
                                                                           std::span<const std::string> keys);

} // namespace vantry
