#pragma once

#include "base/Result.h"

namespace vantry {

/// Gives up, for this process and for good, the right to make, change, rename or remove anything in the file system;
/// what is open for writing stays so. On Linux by Landlock, as far as the kernel knows it. Unsupported on macOS and on
/// kernels without it. To be called before there is a second thread.
[[nodiscard]] Result<void> giveUpChangingFiles();

} // namespace vantry
