#pragma once

#include <string>
#include <string_view>

namespace vantry {

/// A name as it can stand in a line with other texts: U+FFFD for what is no UTF-8, for line breaks and other controls,
/// and for what changes the direction of writing, so that no file name looks like another text.
[[nodiscard]] std::string singleLine(std::string_view name);

} // namespace vantry
