#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCandidate.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vantry {

/// Where the records of moves lie: JSON files that tell when, how many items of which category and how many bytes, and
/// nothing by which an item could be told.
[[nodiscard]] std::filesystem::path cleanupHistoryFolder(const std::filesystem::path& home);

/// The record of a move of `candidates` at `now`; absent when its total cannot be told in 64 bits.
[[nodiscard]] std::optional<std::string> cleanupHistoryJson(std::span<const CleanupCandidate> candidates,
                                                            SystemTime now);

/// The record of one move: chosen when its first file has been moved, then written again after each further file.
struct CleanupRecord {
    SystemTime movedAt;
    std::string fileName; ///< unique, so that two instances never write to the same file

    [[nodiscard]] static CleanupRecord startedAt(SystemTime movedAt);

    bool operator==(const CleanupRecord&) const = default;
};

/// Whether more files may be added to a record. Only the `last` version is synced to the disk and prunes old records.
enum class RecordVersion { interim, last };

/// Writes the record of a move of `candidates`, in place of its earlier version. Missing folders on the way are created
/// with the permissions 0700, and the record's own folder gets them in any case; a link or another user's folder in its
/// place is refused. False when the record could not be written: its earlier version stays. Blocking; any thread.
[[nodiscard]] bool saveHistory(std::span<const CleanupCandidate> candidates, const std::filesystem::path& home,
                               const CleanupRecord& record, RecordVersion version);

/// Removes the records in `folder` that were modified more than 90 days before `now`: regular files with the extension
/// "json" that are not hidden. Removes drafts of records that an earlier process left more than an hour ago, too. What
/// cannot be removed stays. Blocking; any thread.
void pruneCleanupHistory(const std::filesystem::path& folder, SystemTime now);

} // namespace vantry
