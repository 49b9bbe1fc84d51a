#pragma once

#include "cleanup/scan/ScanWorkers.h"
#include "platform/StopSwitch.h"

#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// Has the texts under `keys` read by workers of `executable`, many files by each, one worker at a time. A worker that
/// dies, writes what it should not or has not answered for a file after a second is given up, and the next one goes on
/// behind that file, which has no texts then. Complete when a worker answered for every file, also for those that are
/// none or no list. Blocking, until `deadline` and what it takes to end a worker at most, or until `stopSwitch`, which
/// may be null, is stopped.
[[nodiscard]] PropertyListTexts readPropertyLists(const std::filesystem::path& executable,
                                                  std::span<const std::filesystem::path> files,
                                                  std::span<const std::string> keys, Deadline deadline,
                                                  const std::shared_ptr<StopSwitch>& stopSwitch);

} // namespace vantry::CleanupScanner
