#pragma once

#include "base/Result.h"

#include <cstddef>

namespace vantry {

// What a worker process gives up, for good, before it looks at untrusted files.

/// Gives up the right to create, change, rename or remove anything in the file system; descriptors that are open for
/// writing stay so. By Landlock on Linux, as far as the kernel supports it; unsupported on macOS and on kernels without
/// it. Call it before a second thread is started.
[[nodiscard]] Result<void> giveUpChangingFiles();

/// Allows this process at most `bytes` more of address space than it has, and no core file. Allocations beyond the
/// limit fail, which ends most programs. On macOS, and under a sanitizer, it only prevents the core file and returns
/// unsupported.
[[nodiscard]] Result<void> limitMemory(std::size_t bytes);

} // namespace vantry
