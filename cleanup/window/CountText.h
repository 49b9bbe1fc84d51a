#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantry {

/// "1 file", "2 files".
[[nodiscard]] inline std::string countText(std::size_t count, std::string_view noun) {
    std::string text = std::to_string(count) + " ";
    text += noun;
    return count == 1 ? text : text + "s";
}

} // namespace vantry
