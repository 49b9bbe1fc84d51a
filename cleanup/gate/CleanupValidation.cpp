#include "cleanup/gate/CleanupValidation.h"

#include "base/StandardizedPath.h"
#include "cleanup/gate/SafePaths.h"
#include "cleanup/gate/ValidationDecisions.h"
#include "platform/ItemFacts.h"

#include <unistd.h>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

// A pinned file exists, and no link leads to it. Without a pin, the path is examined: behind a link there may be no
// item, and an item that could not be opened, for want of a descriptor, may still exist.
Refusal refusalByPath(const std::filesystem::path& item, std::optional<PinFailure> failure) {
    const bool isProven = !failure || failure == PinFailure::special;
    const bool exists = isProven || (failure != PinFailure::missing && readItemFacts(item));
    if (const auto refusal = refusalByExistence(exists))
        return refusal;
    return refusalByLinks(!isProven && (failure == PinFailure::link || !pathHasNoSymbolicLinkComponents(item)));
}

std::optional<PinnedFileFacts> factsOf(const std::expected<PinnedFile, PinFailure>& file) {
    if (file)
        return file->facts();
    return file.error() == PinFailure::special ? std::optional(PinnedFileFacts()) : std::nullopt;
}

std::unexpected<std::string> refused(const Refusal& refusal) { return std::unexpected(std::string(*refusal)); }

} // namespace

std::expected<ValidatedFile, std::string> validatedFile(const CleanupCandidate& candidate, const CleanupPlaces& places,
                                                        SystemTime now) {
    if (const auto refusal = refusalByScan(candidate.category, candidate.scannedAt, now))
        return refused(refusal);

    const std::filesystem::path item = standardizedPath(candidate.url);
    const std::filesystem::path parent = item.parent_path();
    const auto root = PinnedFolder::open(parent);
    auto file = root ? PinnedFile::open(*root, item.filename().native()) : std::unexpected(root.error());
    const auto failure = file ? std::nullopt : std::optional(file.error());
    if (const auto refusal = refusalByPath(item, failure))
        return refused(refusal);
    const auto rule = approvedRule(candidate.category, item, places);
    if (const auto refusal = refusalByParent(rule))
        return refused(refusal);
    // Failing to open the folder does not prove that it is missing.
    const bool isUnknown = failure == PinFailure::unavailable;
    if (const auto refusal =
            refusalByRootPlace(isUnknown ? pathHasNoSymbolicLinkComponents(parent) : (*root)->isInPlace()))
        return refused(refusal);

    auto facts = factsOf(file);
    if (const auto refusal = refusalByKind(facts))
        return refused(refusal);
    const auto rootFacts = (*root)->facts();
    if (const auto refusal = refusalByRoot(rootFacts))
        return refused(refusal);
    if (const auto refusal = refusalByIdentity(candidate, *facts, *rootFacts))
        return refused(refusal);
    if (const auto refusal = refusalByRule(candidate, *rule, *facts, getuid(), now))
        return refused(refusal);
    if (const auto refusal = refusalByPlace(file->place()))
        return refused(refusal);
    return ValidatedFile{std::move(*file), std::move(*facts)};
}

std::optional<std::string> validationFailure(const CleanupCandidate& candidate, const CleanupPlaces& places,
                                             SystemTime now) {
    const auto file = validatedFile(candidate, places, now);
    return file ? std::nullopt : std::optional(file.error());
}

} // namespace vantry::CleanupScanner
