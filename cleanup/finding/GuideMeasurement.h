#pragma once

#include "base/Time.h"
#include "cleanup/finding/ScanEnvironment.h"
#include "cleanup/measuring/ScanWorkers.h"
#include "cleanup/model/CleanupPlaces.h"
#include "cleanup/model/CleanupScanReport.h"

#include <functional>
#include <map>
#include <string>

namespace vantry::CleanupScanner {

/// Measures the places of the catalog's avenues that have some of their own, by workers, until `deadline`; empty once
/// `isWanted` says no, which is asked before each worker. Nothing is found for removal, and nothing is changed. A place
/// that is a link is not followed; a folder that is searched may be one. No mount is entered that lies in a place.
/// Blocking; any thread but the main one.
[[nodiscard]] std::map<std::string, GuideUsage> measureGuide(ScanWorkers& workers, const CleanupPlaces& places,
                                                             SystemTime now, Deadline deadline,
                                                             const std::function<bool()>& isWanted);

/// The same on the system that `environment` describes, for at most 15 s.
[[nodiscard]] std::map<std::string, GuideUsage> measureGuide(const ScanEnvironment& environment,
                                                             const std::function<bool()>& isWanted);

} // namespace vantry::CleanupScanner
