#pragma once

#include "cleanup/model/CleanupByteAmount.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupCategoryMetric.h"
#include "cleanup/scan/ScanEnvironment.h"
#include "cleanup/scan/ScanWorkers.h"

#include <filesystem>
#include <map>
#include <span>
#include <string_view>

namespace vantry::CleanupScanner {

// How much the places of the categories hold, in allocated bytes. What could not be measured to its end is a lower
// bound, what could not be measured at all is unavailable. Blocking; one thread, the scan's own.

/// A place that is missing holds nothing; a link, or what is no folder, is unavailable.
[[nodiscard]] CleanupByteAmount measureRoot(ScanWorkers& workers, const std::filesystem::path& place,
                                            Deadline deadline);

/// The applications that install macOS.
[[nodiscard]] CleanupByteAmount measureMacOSInstallerUsage(ScanWorkers& workers, const ScanEnvironment& environment,
                                                           Deadline deadline);

/// The files directly in the folder of downloads, each in the one of the four download categories whose finder matches
/// it, if any.
[[nodiscard]] std::map<CleanupCategory, CleanupByteAmount>
measureDownloadUsage(ScanWorkers& workers, const ScanEnvironment& environment, Deadline deadline);

/// The files with one of `extensions`, in lower case, directly in those of `roots` that exist.
[[nodiscard]] CleanupByteAmount measureMatchingFileUsage(ScanWorkers& workers,
                                                         std::span<const std::filesystem::path> roots,
                                                         std::span<const std::string_view> extensions,
                                                         Deadline deadline);

/// The sum. Exact when every part is; unavailable when every part is; a sum that would overflow is at least the largest
/// value. Negative parts count as 0.
[[nodiscard]] CleanupByteAmount combineAmounts(std::span<const CleanupByteAmount> amounts);

/// The metric of every category, measured in their order until the one deadline. Crash reports lie in a folder of the
/// logs and are counted there: theirs is 0.
[[nodiscard]] std::map<CleanupCategory, CleanupCategoryMetric>
measureCategoryUsage(ScanWorkers& workers, const ScanEnvironment& environment,
                     std::span<const CleanupCandidate> candidates, Deadline deadline);

} // namespace vantry::CleanupScanner
