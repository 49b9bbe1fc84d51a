#include "cleanup/scan/DirectoryMetrics.h"

#include "platform/DirectoryWalk.h"

#include <algorithm>
#include <thread>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::milliseconds longestMeasurement{500};
constexpr unsigned mostThreads = 4; // the kernel's locks leave little to more

} // namespace

DirectoryMetrics directoryMetricsInProcess(const std::filesystem::path& folder, Deadline deadline) {
    const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads);
    const TreeTotals totals = walkTree(folder, std::min(deadline, deadlineIn(longestMeasurement)), threads);
    return {totals.allocatedBytes, totals.newestModification, totals.complete};
}

} // namespace vantry::CleanupScanner
