#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCandidate.h"
#include "platform/PinnedFile.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <sys/types.h>

namespace vantry::CleanupScanner {

/// Why a candidate is refused, as `validatedFile` says it; absent when there is no reason.
using Refusal = std::optional<std::string_view>;

// What validation decides, in its order, from what it was told. Touches no disk.

/// By the category and by the time since the scan recorded the candidate.
[[nodiscard]] Refusal refusalByScan(CleanupCategory category, SystemTime scannedAt, SystemTime now);

[[nodiscard]] Refusal refusalByExistence(bool exists);
[[nodiscard]] Refusal refusalByLinks(bool pathHasLink);
/// `item` must lie directly in one of `roots`; both standardized.
[[nodiscard]] Refusal refusalByParent(const std::filesystem::path& item, std::span<const std::filesystem::path> roots);
[[nodiscard]] Refusal refusalByRootPlace(bool isInPlace);

[[nodiscard]] Refusal refusalByKind(const std::optional<PinnedFileFacts>& facts);
[[nodiscard]] Refusal refusalByRoot(const std::optional<PinnedFolderFacts>& root);
/// By everything that the scan recorded of the item, its size aside.
[[nodiscard]] Refusal refusalByIdentity(const CleanupCandidate& candidate, const PinnedFileFacts& facts,
                                        const PinnedFolderFacts& root);
/// By the item's owner, size, type and age. `user` is the one who runs this.
[[nodiscard]] Refusal refusalByRules(const CleanupCandidate& candidate, const PinnedFileFacts& facts, uid_t user,
                                     SystemTime now);

/// By where the name leads in the end.
[[nodiscard]] Refusal refusalByPlace(PinnedPlace place);

} // namespace vantry::CleanupScanner
