#pragma once

#include <string>

namespace vantry {

/// A new random UUID (RFC 9562, version 4): 8-4-4-4-12 hexadecimal digits in upper case. Any thread.
[[nodiscard]] std::string randomUuid();

} // namespace vantry
