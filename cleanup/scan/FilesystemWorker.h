#pragma once

#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// Whether this process was started as a filesystem worker, that is with "--directory-metrics-worker" or
/// "--shallow-children-worker" as its first argument. If so its work is done when this returns, and the process is to
/// end with status 0 without an interface. `arguments` are the process's, without its name.
[[nodiscard]] bool runFilesystemWorkerIfRequested(std::span<const std::string> arguments);

} // namespace vantry::CleanupScanner
