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

/// Writes the record of a move, then removes records that are too old. The folder and those on the way to it are made
/// with the permissions 0700 when missing, the folder is given them in any case; a link or another user's folder in its
/// place is refused. False when the record could not be written; nothing of it is left then. Blocking; any thread.
[[nodiscard]] bool saveHistory(std::span<const CleanupCandidate> candidates, const std::filesystem::path& home,
                               SystemTime now);

/// Removes the records in `folder` that were modified more than 90 days before `now`: regular files with the extension
/// "json" that are not hidden. Quiet about what cannot be removed. Blocking; any thread.
void pruneCleanupHistory(const std::filesystem::path& folder, SystemTime now);

} // namespace vantry
