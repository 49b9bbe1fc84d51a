#pragma once

#include <fmt/core.h>
#include <string>

namespace vantry {

namespace detail {
[[nodiscard]] std::string formatted(fmt::string_view text, fmt::format_args arguments);
}

/// The text with each pair of braces replaced by an argument, in the syntax of the library fmt, which checks it when it
/// is compiled. The library's own function would be compiled into every source that calls it, for seconds in each.
template <class... Arguments>
[[nodiscard]] std::string formatted(fmt::format_string<Arguments...> text, Arguments&&... arguments) {
    return detail::formatted(text, fmt::make_format_args(arguments...));
}

} // namespace vantry
