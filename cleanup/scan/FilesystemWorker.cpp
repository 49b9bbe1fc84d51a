#include "cleanup/scan/FilesystemWorker.h"

namespace vantry::CleanupScanner {

bool runFilesystemWorkerIfRequested(std::span<const std::string> arguments) {
    // Nothing starts a worker yet; one started by hand ends silently, as one with a job that cannot be done.
    return !arguments.empty() &&
           (arguments.front() == "--directory-metrics-worker" || arguments.front() == "--shallow-children-worker");
}

} // namespace vantry::CleanupScanner
