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

/// The list as an XML property list (CoreFoundation on macOS, libplist elsewhere). Fails for a text that is not
/// valid UTF-8 or has a character that XML cannot express. Any thread.
[[nodiscard]] Result<std::string> xmlPropertyList(const PropertyList& list);

inline constexpr std::size_t largestPropertyList = 8 << 20;      ///< bytes that `propertyListTexts` reads
inline constexpr std::size_t longestPropertyListText = 64 << 10; ///< bytes in UTF-8 of a text that it returns

/// The texts under `keys` of the outermost dictionary of a list that is XML in UTF-8 or binary. A key has none when its
/// value is not a text, too long or not valid Unicode. Fails for everything else.
/// Only for a worker process, see platform/Sandbox.h, whose death its parent copes with: the reader is CoreFoundation's
/// or libplist's, and a hostile list can make it allocate gigabytes (shared references) or overflow the stack (deep
/// nesting).
[[nodiscard]] Result<std::map<std::string, std::string>> propertyListTexts(std::string_view bytes,
                                                                           std::span<const std::string> keys);

} // namespace vantry
