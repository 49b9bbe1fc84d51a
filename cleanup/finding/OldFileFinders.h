#pragma once

#include "cleanup/finding/ScanContext.h"
#include "cleanup/model/CleanupRules.h"
#include "platform/ItemFacts.h"

#include <chrono>
#include <filesystem>
#include <vector>

namespace vantry::CleanupScanner {

/// An item is old at `now` when it was modified before this moment.
[[nodiscard]] SystemTime cutoffDate(SystemTime now, std::chrono::days olderThan);

/// Whether a file is old and large enough, whatever its extension.
[[nodiscard]] bool isOldRegularFile(const CleanupRule& rule, const ItemFacts& facts, SystemTime cutoff);
/// Whether a folder is worth measuring.
[[nodiscard]] bool isOldFolder(const CleanupRule& rule, const std::filesystem::path& path, const ItemFacts& facts,
                               SystemTime cutoff);
/// Whether an old folder may be offered, given what was measured in it.
[[nodiscard]] bool isOldInside(const CleanupRule& rule, const DirectoryMetrics& metrics, SystemTime cutoff);

// Both list the folder once, offer the largest items first and cut the list at the rule's count. Neither reads a folder
// that is a link; for categories that may go to the Trash, neither reads a folder below a link. Whatever they cannot
// read, a missing folder included, and a cut list limit the category.

[[nodiscard]] std::vector<CleanupCandidate> oldRegularFiles(ScanContext& context, const CleanupRule& rule);
[[nodiscard]] std::vector<CleanupCandidate> oldDirectoryChildren(ScanContext& context, const CleanupRule& rule);

} // namespace vantry::CleanupScanner
