#pragma once

#include <fmt/core.h>
#include <string>

namespace vantry {

namespace detail {
[[nodiscard]] std::string formatted(fmt::string_view text, fmt::format_args arguments);
}

/// `fmt::format`, compiled once: calling that directly costs each source seconds of compile time. The text is checked
/// at compile time.
template <class... Arguments>
[[nodiscard]] std::string formatted(fmt::format_string<Arguments...> text, Arguments&&... arguments) {
    return detail::formatted(text, fmt::make_format_args(arguments...));
}

} // namespace vantry
