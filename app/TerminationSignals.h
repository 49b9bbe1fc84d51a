#pragma once

#include "base/Result.h"

namespace vantry {

/// Lets the event loop handle SIGTERM, SIGINT and SIGHUP, so that the application quits as from its menu. Returns a
/// descriptor with one byte to read after the first signal; the same signal again ends the process at once. The
/// handlers stay installed. Main thread, call once.
[[nodiscard]] Result<int> catchTerminationSignals();

} // namespace vantry
