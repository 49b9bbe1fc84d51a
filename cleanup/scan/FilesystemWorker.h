#pragma once

#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// Whether this process was started as a filesystem worker, see WorkerArguments.h. If so its job is done when this
/// returns, also when it could not be done, for which nothing is written; the process is then to end with status 0
/// without an interface. The output file of a listing is made by the worker; a file that stands there already is taken
/// only when it is empty. Gives up the right to change files first, where the system can. `arguments` are the
/// process's, without its name. Blocking, as long as a file system does not answer. Main thread, before any other.
[[nodiscard]] bool runFilesystemWorkerIfRequested(std::span<const std::string> arguments);

} // namespace vantry::CleanupScanner
