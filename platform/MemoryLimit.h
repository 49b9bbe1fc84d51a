#pragma once

#include "base/Result.h"

#include <cstddef>

namespace vantry {

/// Lets this process take at most `bytes` of address space more than it has, for good: to ask for more fails, which
/// ends most programs, and leaves no core file. On macOS, and in a process that is checked by a sanitizer, only the
/// latter, and the answer is unsupported.
[[nodiscard]] Result<void> limitMemory(std::size_t bytes);

} // namespace vantry
