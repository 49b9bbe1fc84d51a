#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCandidate.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vantry {

/// The folder of the records of moves: JSON files that tell when a move happened, how many items of which category it
/// moved and how many bytes, and nothing that identifies an item.
[[nodiscard]] std::filesystem::path cleanupHistoryFolder(const std::filesystem::path& home);

/// The record of a move of `candidates` at `now`; absent if the total does not fit in 64 bits.
[[nodiscard]] std::optional<std::string> cleanupHistoryJson(std::span<const CleanupCandidate> candidates,
                                                            SystemTime now);

/// The record of one move. It is chosen when the first file has been moved, and written again after each further file.
struct CleanupRecord {
    SystemTime movedAt;
    std::string fileName; ///< unique, so that two instances never write the same file

    [[nodiscard]] static CleanupRecord startedAt(SystemTime movedAt);

    bool operator==(const CleanupRecord&) const = default;
};

/// Whether more files may follow. Only the `last` version is synced to the disk and prunes old records. Between interim
/// versions a hidden draft stays beside the record; the last version removes it.
enum class RecordVersion { interim, last };

/// Writes the record of a move of `candidates`, replacing its earlier version. Creates missing folders on the way with
/// the permissions 0700 and sets these on the record's own folder; refuses a link or another user's folder in its
/// place. False if the record could not be written: its earlier version then stays. Blocking; any thread.
[[nodiscard]] bool saveHistory(std::span<const CleanupCandidate> candidates, const std::filesystem::path& home,
                               const CleanupRecord& record, RecordVersion version);

/// Removes the records in `folder` that were modified more than 90 days before `now`: regular files with the extension
/// "json" that are not hidden. Also removes drafts older than an hour, which an earlier process left. Skips what cannot
/// be removed. Blocking; any thread.
void pruneCleanupHistory(const std::filesystem::path& folder, SystemTime now);

} // namespace vantry
