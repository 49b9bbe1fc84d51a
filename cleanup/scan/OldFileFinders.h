#pragma once

#include "cleanup/scan/ScanContext.h"
#include "platform/ItemFacts.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

namespace vantry::CleanupScanner {

/// One use of a finder of old items.
struct OldItemsRule {
    std::filesystem::path folder; ///< in which the items lie directly
    CleanupCategory category;
    std::string_view reason;
    std::chrono::days olderThan;                               ///< since the item, or anything in it, was modified
    std::int64_t minimumSize;                                  ///< allocated bytes
    std::size_t maximumCount;                                  ///< the largest are kept
    std::span<const std::string_view> extensions = {};         ///< of files, in lower case; none: any
    std::span<const std::string_view> excludedExtensions = {}; ///< of files
    std::span<const std::string_view> excludedNames = {};      ///< of folders
};

/// The moment before which something has to have been modified to be old at `now`.
[[nodiscard]] SystemTime cutoffDate(SystemTime now, std::chrono::days olderThan);

[[nodiscard]] bool matchesExtensions(const OldItemsRule& rule, const std::filesystem::path& path);
/// Whether a file, leaving its extension aside, is old and large enough.
[[nodiscard]] bool isOldRegularFile(const OldItemsRule& rule, const ItemFacts& facts, SystemTime cutoff);
/// Whether a folder is worth measuring.
[[nodiscard]] bool isOldFolder(const OldItemsRule& rule, const std::filesystem::path& path, const ItemFacts& facts,
                               SystemTime cutoff);
/// Whether what was measured in an old folder lets it be offered.
[[nodiscard]] bool isOldInside(const OldItemsRule& rule, const DirectoryMetrics& metrics, SystemTime cutoff);

// Neither looks into a folder that is a link; those of what may go to the Trash are not looked into below a link
// either. Both list the folder once, offer the largest first and cut at the rule's count. What they could not look at,
// a folder that is missing among it, means fewer candidates and limits the category, and so does a cut.

[[nodiscard]] std::vector<CleanupCandidate> oldRegularFiles(ScanContext& context, const OldItemsRule& rule);
[[nodiscard]] std::vector<CleanupCandidate> oldDirectoryChildren(ScanContext& context, const OldItemsRule& rule);

} // namespace vantry::CleanupScanner
