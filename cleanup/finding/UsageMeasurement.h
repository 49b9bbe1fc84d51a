#pragma once

#include "cleanup/finding/ScanEnvironment.h"
#include "cleanup/measuring/ScanWorkers.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupScanReport.h"

#include <filesystem>
#include <map>
#include <span>
#include <string_view>

namespace vantry::CleanupScanner {

// How much the places of the categories hold, in allocated bytes. An incomplete measurement gives a lower bound, a
// failed one gives `unavailable`. Blocking; one thread, the scan's own.

/// A missing place holds nothing; a link, or anything that is not a folder, is unavailable.
[[nodiscard]] CleanupByteAmount measureRoot(ScanWorkers& workers, const std::filesystem::path& place,
                                            Deadline deadline);

/// The macOS installers.
[[nodiscard]] CleanupByteAmount measureMacOSInstallerUsage(ScanWorkers& workers, const CleanupPlaces& places,
                                                           Deadline deadline);

/// The files directly in the download folder. Each counts for the one of the four download categories whose finder
/// matches it, if any.
[[nodiscard]] std::map<CleanupCategory, CleanupByteAmount>
measureDownloadUsage(ScanWorkers& workers, const ScanEnvironment& environment, Deadline deadline);

/// The files directly in those of `roots` that exist and have one of `extensions`, in lower case.
[[nodiscard]] CleanupByteAmount measureMatchingFileUsage(ScanWorkers& workers,
                                                         std::span<const std::filesystem::path> roots,
                                                         std::span<const std::string_view> extensions,
                                                         Deadline deadline);

/// The sum: exact if every part is, unavailable if every part is, else a lower bound. On overflow at least the largest
/// value. Negative parts count as 0.
[[nodiscard]] CleanupByteAmount combineAmounts(std::span<const CleanupByteAmount> amounts);

/// The metrics of all categories, measured in their order until the shared deadline. Crash reports lie inside the log
/// folder and are counted there: theirs is 0.
[[nodiscard]] std::map<CleanupCategory, CleanupCategoryMetric>
measureCategoryUsage(ScanWorkers& workers, const ScanEnvironment& environment,
                     std::span<const CleanupCandidate> candidates, Deadline deadline);

} // namespace vantry::CleanupScanner
