#pragma once

#include "base/Deadline.h"
#include "base/Time.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace vantry {

/// How much a folder holds. Sizes are allocated bytes. What is not `complete` is a lower bound, 0 when nothing is
/// known.
struct DirectoryMetrics {
    std::int64_t size = 0;
    std::optional<SystemTime> newestModificationDate; ///< of a regular file in it
    bool complete = false;

    bool operator==(const DirectoryMetrics&) const = default;
};

/// How much a folder and each folder directly in it hold.
struct ChildrenMetrics {
    std::map<std::string, DirectoryMetrics> children; ///< by name, hidden ones too; only those that are complete
    DirectoryMetrics whole;

    bool operator==(const ChildrenMetrics&) const = default;
};

namespace CleanupScanner {

/// Measures `folder` in this process: regular files only, links neither followed nor counted, what cannot be read
/// passed over. A regular file is measured by itself. Stops at the earlier of `deadline` and half a second from now;
/// the answer is then not complete, and neither is it for a link, for what cannot be opened or for a sum that would
/// overflow. Blocking, as long as a file system does not answer; any thread.
[[nodiscard]] DirectoryMetrics directoryMetricsInProcess(const std::filesystem::path& folder, Deadline deadline);

/// The same of `folder`, which is no link, and of each folder directly in it in one go, with half a second for all of
/// it. As a whole it is complete when everything in it is.
[[nodiscard]] ChildrenMetrics childrenMetricsInProcess(const std::filesystem::path& folder, Deadline deadline);

} // namespace CleanupScanner

} // namespace vantry
