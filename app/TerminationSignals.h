#pragma once

#include "base/Result.h"

namespace vantry {

/// Makes SIGTERM, SIGINT and SIGHUP something that the event loop can read, so that the application ends as it does by
/// its menu. The handlers stay for the life of the process. Main thread, once. The result is a descriptor that has one
/// byte to read for the first of the signals; the same signal once more ends the process at once.
[[nodiscard]] Result<int> catchTerminationSignals();

} // namespace vantry
