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

/// What a walk found. Hidden entries count; links neither count nor are followed; a file with several names counts once
/// a name.
struct TreeTotals {
    std::int64_t allocatedBytes = 0;              ///< of regular files; the largest value when the sum would overflow
    std::uint64_t regularFiles = 0;               ///< how many there were
    std::optional<SystemTime> newestModification; ///< the newest content modification date of a regular file
    bool complete = false;                        ///< the whole tree was walked, and the sum did not overflow

    bool operator==(const TreeTotals&) const = default;
};

/// Measures the item at `path`: a regular file by itself, a folder with everything below it, but not what other file
/// systems mounted there hold. What cannot be read is passed over; a link, and a folder that cannot be opened, give
/// nothing and are not complete. Works at any depth and width in bounded memory. Once the tree has shown to be large,
/// `helpers` beside the calling thread take part, also those that become free later. Blocking until the tree is walked
/// or `deadline` has passed, and as long as a file system does not answer; any thread. Never fails: what keeps this
/// process from seeing everything makes the answer not complete. So does, on macOS, a folder of very many folders that
/// changes while the walk is far below it.
[[nodiscard]] TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline,
                                  const std::shared_ptr<SpareThreads>& helpers);

/// Whether `path` itself, a link not followed, is where a file system is mounted. False where that cannot be found out;
/// on Linux also before 5.8. Blocking; any thread.
[[nodiscard]] bool isMountPoint(const std::filesystem::path& path);

/// The names directly inside a folder, as bytes, in the order of the file system. A link to a folder is refused.
/// Blocking; any thread.
[[nodiscard]] Result<std::vector<std::string>> allNames(const std::filesystem::path& folder);

/// The same without the hidden ones: a leading dot; on macOS also the hidden flag.
[[nodiscard]] Result<std::vector<std::string>> visibleNames(const std::filesystem::path& folder);

} // namespace vantry
