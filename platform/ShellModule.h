#pragma once

#include "base/Result.h"

#include <string>

namespace vantry {

/// The address of `symbol` in a part of Ombrel that is loaded on first use: on Linux in `module`, a file such as
/// "libombrel-qt.so", which is loaded now, from the folder of the executable or from "../lib/ombrel" (or the multiarch
/// folder that it was installed to) beside it; on macOS in the executable itself. Stays loaded. One thread at a time.
[[nodiscard]] Result<void*> loadModuleSymbol(const std::string& module, const std::string& symbol);

/// That in the front end. Main thread, once.
[[nodiscard]] Result<void*> loadShellSymbol(const std::string& symbol);

} // namespace vantry
