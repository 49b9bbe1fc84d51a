#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/scan/ScanEnvironment.h"
#include "cleanup/scan/ScanWorkers.h"

#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Looks through the places of every category, by names, kinds, sizes and dates, and by the property lists that say
/// what applications and device backups are called. Changes nothing. Takes 10 s at most to find candidates, 8 s each
/// for the states and the metrics, and half a second more for a worker that was under way;
/// the first scan waits a minute at most for the system's questions before. Never fails: what could not
/// be looked at is told by the states and the metrics. Data of `runningBundleIdentifiers` is never offered as left
/// behind. Each call stands alone. Blocking; any thread but the main one.
[[nodiscard]] CleanupScanReport scan(const ScanEnvironment& environment,
                                     std::span<const std::string> runningBundleIdentifiers);

/// The same with `workers` to look into folders.
[[nodiscard]] CleanupScanReport scan(const ScanEnvironment& environment, ScanWorkers& workers,
                                     std::span<const std::string> runningBundleIdentifiers);

/// One candidate a path, where it was first found; a low-risk one takes the place of one to be reviewed.
[[nodiscard]] std::vector<CleanupCandidate> withoutDuplicates(std::vector<CleanupCandidate> candidates);

/// By area, then low risk before review, then the larger first; otherwise the order stays.
void sortForReport(std::vector<CleanupCandidate>& candidates);

/// What was checked but left something out is limited; every other state says more.
void mergeLimitedCategories(const std::set<CleanupCategory>& limited,
                            std::map<CleanupCategory, CleanupScanState>& states);

} // namespace vantry::CleanupScanner
