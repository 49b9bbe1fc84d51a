#pragma once

#include "base/Result.h"

#include <string>

namespace vantry {

/// The address of `symbol` in a part of Ombrel that is loaded on first use. On Linux this loads `module`, a file such
/// as "libombrel-qt.so", from the folder of the executable or from the "../lib/ombrel/modules" (or multiarch folder)
/// that it was installed to; on macOS the symbol is in the executable. The module stays loaded. One thread at a time.
[[nodiscard]] Result<void*> loadModuleSymbol(const std::string& module, const std::string& symbol);

/// The same in the module of the front end. Main thread, once.
[[nodiscard]] Result<void*> loadShellSymbol(const std::string& symbol);

} // namespace vantry
