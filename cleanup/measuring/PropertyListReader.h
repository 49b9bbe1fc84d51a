#pragma once

#include "cleanup/measuring/ScanWorkers.h"
#include "platform/StopSwitch.h"

#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// Reads the texts under `keys` by workers of `executable`, many files each, one worker at a time. A worker that dies,
/// misbehaves or has not answered for a file after a second is given up; the next one continues after that file, which
/// then has no texts. Complete if a worker answered for every file, even if the answer is that it is not a list. Blocks
/// at most until `deadline`, plus the time to end a worker, or until `stopSwitch`, which may be null, is stopped.
[[nodiscard]] PropertyListTexts readPropertyLists(const std::filesystem::path& executable,
                                                  std::span<const std::filesystem::path> files,
                                                  std::span<const std::string> keys, Deadline deadline,
                                                  const std::shared_ptr<StopSwitch>& stopSwitch);

} // namespace vantry::CleanupScanner
