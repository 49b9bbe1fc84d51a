#pragma once

#include "base/Result.h"

#include <string>
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

} // namespace vantry
