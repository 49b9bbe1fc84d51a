#pragma once

#include "cleanup/model/CleanupCategory.h"
#include "cleanup/model/CleanupScanState.h"
#include "cleanup/scan/ScanEnvironment.h"
#include "cleanup/scan/ScanWorkers.h"

#include <filesystem>
#include <map>
#include <span>

namespace vantry::CleanupScanner {

// How the places of the categories could be looked at. Blocking; one thread, the scan's own.

/// One place that is listed completely is enough; what may not be read outranks what is slow. The `questions`, if any,
/// know what may be read.
[[nodiscard]] CleanupScanState accessState(ScanWorkers& workers, std::span<const std::filesystem::path> places,
                                           Deadline deadline, const FolderQuestions* questions = nullptr);

/// The state of every category: of the downloads first, then of the backups of devices, then of the others in their
/// order.
[[nodiscard]] std::map<CleanupCategory, CleanupScanState>
scanStates(ScanWorkers& workers, const ScanEnvironment& environment, Deadline deadline);

} // namespace vantry::CleanupScanner
