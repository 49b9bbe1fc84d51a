#pragma once

#include "cleanup/finding/ScanEnvironment.h"
#include "cleanup/measuring/ScanWorkers.h"
#include "cleanup/model/CleanupScanReport.h"

#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Scans the places of every category. Reads only names, kinds, sizes and dates, and the property lists that name
/// applications and device backups. Changes nothing. Takes at most 10 s to find candidates, 8 s each for the states and
/// the metrics, and half a second for the last worker; the first scan first waits up to a minute for the system's
/// questions. Never fails: the states and the metrics say what could not be read. Data of `runningBundleIdentifiers` is
/// never offered as left behind. Keeps nothing between calls. Blocking; any thread but the main one.
[[nodiscard]] CleanupScanReport scan(const ScanEnvironment& environment,
                                     std::span<const std::string> runningBundleIdentifiers);

/// The same, with `workers` to read folders.
[[nodiscard]] CleanupScanReport scan(const ScanEnvironment& environment, ScanWorkers& workers,
                                     std::span<const std::string> runningBundleIdentifiers);

/// One candidate for each path: the first one found, or the low-risk one if there is one.
[[nodiscard]] std::vector<CleanupCandidate> withoutDuplicates(std::vector<CleanupCandidate> candidates);

/// By area, then low risk before review, then larger before smaller; a stable sort.
void sortForReport(std::vector<CleanupCandidate>& candidates);

/// Turns `checked` into `limited` for the limited categories. Other states stay.
void mergeLimitedCategories(const std::set<CleanupCategory>& limited,
                            std::map<CleanupCategory, CleanupScanState>& states);

} // namespace vantry::CleanupScanner
