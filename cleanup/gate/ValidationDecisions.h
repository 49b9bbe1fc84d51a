#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupRules.h"
#include "platform/PinnedFile.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace vantry::CleanupScanner {

/// The reason of a refusal, as `validatedFile` gives it; absent if there is none.
using Refusal = std::optional<std::string_view>;

// The decisions of validation in their order, from facts that were read before. Touch no disk.

/// By the category and the age of the scan.
[[nodiscard]] Refusal refusalByScan(CleanupCategory category, SystemTime scannedAt, SystemTime now);

[[nodiscard]] Refusal refusalByExistence(bool exists);
[[nodiscard]] Refusal refusalByLinks(bool pathHasLink);

/// The rule of the category about what lies directly in the folder of `item`, a standardized path; absent if there is
/// none in the home folder.
[[nodiscard]] std::optional<CleanupRule> approvedRule(CleanupCategory category, const std::filesystem::path& item,
                                                      const CleanupPlaces& places);
[[nodiscard]] Refusal refusalByParent(const std::optional<CleanupRule>& rule);
[[nodiscard]] Refusal refusalByRootPlace(bool isInPlace);

[[nodiscard]] Refusal refusalByKind(const std::optional<PinnedFileFacts>& facts);
[[nodiscard]] Refusal refusalByRoot(const std::optional<PinnedFolderFacts>& root);
/// By everything that the scan recorded of the item, except its size.
[[nodiscard]] Refusal refusalByIdentity(const CleanupCandidate& candidate, const PinnedFileFacts& facts,
                                        const PinnedFolderFacts& root);
/// By the item's owner and size, and by its type and age, which are the rule's. `user` is the current user.
[[nodiscard]] Refusal refusalByRule(const CleanupCandidate& candidate, const CleanupRule& rule,
                                    const PinnedFileFacts& facts, uid_t user, SystemTime now);

/// By where the name leads after all other checks.
[[nodiscard]] Refusal refusalByPlace(PinnedPlace place);

} // namespace vantry::CleanupScanner
