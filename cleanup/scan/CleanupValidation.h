#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/scan/ScanEnvironment.h"
#include "platform/PinnedFile.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <string>

namespace vantry::CleanupScanner {

// Blocking; any thread. Nothing here changes the disk, and nothing but the path itself tells what is asked for: its
// bytes need not be UTF-8.

/// A file that passed every check, and what the checks judged it by.
struct ValidatedFile {
    PinnedFile file;
    PinnedFileFacts facts;
};

/// Whether the candidate, as it stands on disk now, still is the item that the scan found, in a place where it may be
/// moved to the Trash: that item, held, or why not, a lower-case phrase that follows an item's name. The checks have an
/// order; the first that fails decides, and nothing is read after it. What was checked is what is held; the name led
/// to it at the end.
[[nodiscard]] std::expected<ValidatedFile, std::string> validatedFile(const CleanupCandidate& candidate,
                                                                      const ScanEnvironment& environment);

/// The same without the item: absent when the candidate may be moved.
[[nodiscard]] std::optional<std::string> validationFailure(const CleanupCandidate& candidate,
                                                           const ScanEnvironment& environment);

/// Whether `path` is absolute and none of its components, the last included, is a link or missing.
[[nodiscard]] bool pathHasNoSymbolicLinkComponents(const std::filesystem::path& path);

/// Whether `candidate` lies below `root`, judged by the paths alone.
[[nodiscard]] bool liesBelow(const std::filesystem::path& candidate, const std::filesystem::path& root);

/// The same, and `candidate` is not itself a link.
[[nodiscard]] bool isSafeCandidate(const std::filesystem::path& candidate, const std::filesystem::path& root);

/// Whether a component of the absolute `path`, the last included, is a link. What cannot be looked at is none.
[[nodiscard]] bool leadsThroughLink(const std::filesystem::path& path);

/// Whether `path` itself is a link; a slash at its end changes nothing. False for what cannot be looked at.
[[nodiscard]] bool isSymbolicLink(const std::filesystem::path& path);

} // namespace vantry::CleanupScanner
