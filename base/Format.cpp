#define FMT_HEADER_ONLY // here, and nowhere else

#include "base/Format.h"

#include <fmt/format.h>

namespace vantry {

std::string detail::formatted(fmt::string_view text, fmt::format_args arguments) {
    return fmt::vformat(text, arguments);
}

} // namespace vantry
