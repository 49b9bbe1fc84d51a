#pragma once

#include "base/Deadline.h"
#include "base/Time.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace vantry {

/// How much a folder holds, in allocated bytes. Without `complete`, the size is a lower bound, 0 if nothing is known.
struct DirectoryMetrics {
    std::int64_t size = 0;
    std::optional<SystemTime> newestModificationDate; ///< of the regular files in it
    bool complete = false;

    bool operator==(const DirectoryMetrics&) const = default;
};

/// How much a folder and each folder directly in it hold.
struct ChildrenMetrics {
    std::map<std::string, DirectoryMetrics> children; ///< by name, hidden ones included; only complete ones
    DirectoryMetrics whole;

    bool operator==(const ChildrenMetrics&) const = default;
};

namespace CleanupScanner {

/// Measures `folder` in this process: regular files only; links are neither followed nor counted. If `folder` is a
/// regular file, measures that. Stops at the earlier of `deadline` and half a second from now, with an incomplete
/// answer. Also incomplete for a link, for anything that cannot be opened, and for a sum that would overflow. Blocks
/// for as long as a file system does not answer; any thread.
[[nodiscard]] DirectoryMetrics directoryMetricsInProcess(const std::filesystem::path& folder, Deadline deadline);

/// The same for `folder`, which must not be a link, and for each folder directly in it, within one half second. The
/// whole is complete if everything in it is.
[[nodiscard]] ChildrenMetrics childrenMetricsInProcess(const std::filesystem::path& folder, Deadline deadline);

} // namespace CleanupScanner

} // namespace vantry
