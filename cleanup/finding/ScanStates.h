#pragma once

#include "cleanup/finding/ScanEnvironment.h"
#include "cleanup/measuring/ScanWorkers.h"
#include "cleanup/model/CleanupCategory.h"
#include "cleanup/model/CleanupScanReport.h"

#include <filesystem>
#include <map>
#include <span>

namespace vantry::CleanupScanner {

// Whether the places of the categories can be read. Blocking; one thread, the scan's own.

/// `checked` if one place was listed completely. Otherwise a missing permission outranks a slow place. `questions`, if
/// not null, knows what may be read.
[[nodiscard]] CleanupScanState accessState(ScanWorkers& workers, std::span<const std::filesystem::path> places,
                                           Deadline deadline, const FolderQuestions* questions = nullptr);

/// The state of every category. The downloads are checked first, then the device backups, then the others in their
/// order.
[[nodiscard]] std::map<CleanupCategory, CleanupScanState>
scanStates(ScanWorkers& workers, const ScanEnvironment& environment, Deadline deadline);

} // namespace vantry::CleanupScanner
