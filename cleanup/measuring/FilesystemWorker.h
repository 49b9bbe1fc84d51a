#pragma once

#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// Whether this process was started as a filesystem worker, see WorkerArguments.h. If so, it has done its job when this
/// returns, or has written nothing if it could not; the process then has to exit with status 0 without an interface.
/// The worker creates the output file of a listing; an existing file is used only if it is empty. Gives up the right to
/// change files first, where the system allows that. `arguments` are the process's, without its name. Blocks for as
/// long as a file system does not answer. Main thread, before any other starts.
[[nodiscard]] bool runFilesystemWorkerIfRequested(std::span<const std::string> arguments);

} // namespace vantry::CleanupScanner
