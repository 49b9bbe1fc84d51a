#pragma once

#include "base/Deadline.h"
#include "base/Result.h"
#include "base/Time.h"
#include "platform/SpareThreads.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// What a walk found. Hidden entries count. Links are neither counted nor followed. A file with several names counts
/// once for each name.
struct TreeTotals {
    std::int64_t allocatedBytes = 0;              ///< of regular files; held at the largest value on overflow
    std::uint64_t regularFiles = 0;               ///< their number
    std::optional<SystemTime> newestModification; ///< the newest content modification date of a regular file
    bool complete = false;                        ///< the whole tree was walked without overflow

    bool operator==(const TreeTotals&) const = default;
};

/// Measures the item at `path`: a regular file by itself, a folder with everything below it on the same file system.
/// Unreadable entries are skipped; for a link, or a folder that cannot be opened, the answer is empty and not complete.
/// Works at any depth and width in bounded memory. In a large tree `helpers` work beside the calling thread, including
/// those that become free later. Blocking until the tree is walked or `deadline` has passed, and as long as a file
/// system does not answer; any thread. Never fails: if this process lacks the means to see everything, the answer is
/// not complete. On macOS it is also not complete when a very wide folder changes while the walk is far below it.
[[nodiscard]] TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline,
                                  const std::shared_ptr<SpareThreads>& helpers);

/// Whether `path` itself is a mount point; a link is not followed. False if that cannot be determined, as on Linux
/// before 5.8. Blocking; any thread.
[[nodiscard]] bool isMountPoint(const std::filesystem::path& path);

/// The names directly inside a folder, as bytes, in the order of the file system. A link to a folder is refused.
/// Blocking; any thread.
[[nodiscard]] Result<std::vector<std::string>> allNames(const std::filesystem::path& folder);

/// The same without the hidden ones: a leading dot; on macOS also the hidden flag.
[[nodiscard]] Result<std::vector<std::string>> visibleNames(const std::filesystem::path& folder);

} // namespace vantry
