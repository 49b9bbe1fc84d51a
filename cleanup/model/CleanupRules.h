#pragma once

#include "cleanup/model/CleanupCategory.h"
#include "cleanup/model/CleanupPlaces.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantry::CleanupScanner {

/// What is offered in one place, and when. The finders find by it, and validation accepts by the same row, so that a
/// type is never accepted in another row's place. The home folder itself is never a place. Functions here touch no
/// disk; any thread.
struct CleanupRule {
    CleanupCategory category;
    std::filesystem::path folder;                         ///< the items lie directly in it
    std::chrono::days olderThan{};                        ///< since the item, or anything in it, was modified
    std::int64_t minimumSize = 0;                         ///< allocated bytes
    std::size_t maximumCount = 0;                         ///< the largest are kept
    std::string_view reason;                              ///< shown with each item
    std::span<const std::string_view> extensions;         ///< of files, in lower case; empty: any
    std::span<const std::string_view> excludedExtensions; ///< of files
    std::span<const std::string_view> excludedNames;      ///< of folders
};

/// The rules of a category, in the order in which its places are searched. Those of categories that offer their places
/// as a whole, or by what is inside, have neither age nor size.
[[nodiscard]] std::vector<CleanupRule> cleanupRules(CleanupCategory category, const CleanupPlaces& places);

/// Their folders.
[[nodiscard]] std::vector<std::filesystem::path> approvedRoots(CleanupCategory category, const CleanupPlaces& places);

/// Whether the name of `path` has one of the rule's extensions.
[[nodiscard]] bool matchesExtensions(const CleanupRule& rule, const std::filesystem::path& path);

/// What follows the last dot of the name, in lower case (ASCII); empty without a dot or with one only at the start or
/// end.
[[nodiscard]] std::string lowercaseExtension(const std::filesystem::path& path);

} // namespace vantry::CleanupScanner
