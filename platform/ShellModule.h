#pragma once

#include "base/Result.h"

#include <string>

namespace vantry {

/// The address of `symbol` in the front end: on Linux in the module "libombrel-qt.so", which is loaded now, from the
/// folder of the executable or from "../lib/ombrel" (or the multiarch folder that it was installed to) beside it; on
/// macOS in the executable itself. Stays loaded. Main thread, once.
[[nodiscard]] Result<void*> loadShellSymbol(const std::string& symbol);

} // namespace vantry
