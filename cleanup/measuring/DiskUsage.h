#pragma once

#include "base/Deadline.h"
#include "cleanup/measuring/DirectoryMetrics.h"

#include <filesystem>
#include <span>
#include <string>

namespace vantry::CleanupScanner {

/// What `du -x` counts at `path`, in this process: everything below it on its file system, folders included, files with
/// several names once, links by themselves; a folder with nothing in it counts nothing. With `endings`, only the
/// regular files whose names end in one of them. Complete unless something could not be read or `deadline` passed.
/// Blocks for as long as a file system does not answer; any thread. Without a date.
[[nodiscard]] DirectoryMetrics diskUsageInProcess(const std::filesystem::path& path,
                                                  std::span<const std::string> endings, Deadline deadline);

} // namespace vantry::CleanupScanner
