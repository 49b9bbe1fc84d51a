#include "cleanup/scan/CleanupValidation.h"

#include "cleanup/model/StandardizedPath.h"
#include "cleanup/scan/CleanupPlaces.h"
#include "cleanup/scan/ValidationDecisions.h"
#include "platform/ItemFacts.h"

#include <unistd.h>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

// A pin proves that the item is there and that no link leads to it. Without one the path is asked: behind a link there
// may be no item, and what could not be held, for want of a descriptor, may well be there.
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
    return file.error() == PinFailure::special ? std::optional(PinnedFileFacts{.isRegularFile = false}) : std::nullopt;
}

std::unexpected<std::string> refused(const Refusal& refusal) { return std::unexpected(std::string(*refusal)); }

} // namespace

std::expected<ValidatedFile, std::string> validatedFile(const CleanupCandidate& candidate,
                                                        const ScanEnvironment& environment) {
    const SystemTime now = environment.now();
    if (const auto refusal = refusalByScan(candidate.category, candidate.scannedAt, now))
        return refused(refusal);

    const std::filesystem::path item = standardizedPath(candidate.url);
    const std::filesystem::path parent = item.parent_path();
    const auto root = PinnedFolder::open(parent);
    auto file = root ? PinnedFile::open(*root, item.filename().native()) : std::unexpected(root.error());
    const auto failure = file ? std::nullopt : std::optional(file.error());
    if (const auto refusal = refusalByPath(item, failure))
        return refused(refusal);
    if (const auto refusal = refusalByParent(item, approvedRoots(candidate.category, environment)))
        return refused(refusal);
    // Not to be able to hold a thing is no sign that the folder is not there.
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
    if (const auto refusal = refusalByRules(candidate, *facts, getuid(), now))
        return refused(refusal);
    if (const auto refusal = refusalByPlace(file->place()))
        return refused(refusal);
    return ValidatedFile{std::move(*file), std::move(*facts)};
}

std::optional<std::string> validationFailure(const CleanupCandidate& candidate, const ScanEnvironment& environment) {
    const auto file = validatedFile(candidate, environment);
    return file ? std::nullopt : std::optional(file.error());
}

bool pathHasNoSymbolicLinkComponents(const std::filesystem::path& path) {
    const std::filesystem::path standardized = standardizedPath(path);
    if (!standardized.is_absolute())
        return false;
    std::filesystem::path growing = "/";
    for (const auto& component : standardized.relative_path()) {
        growing /= component;
        const auto facts = readItemFacts(growing);
        if (!facts || facts->kind == ItemFacts::Kind::symbolicLink)
            return false;
    }
    return true;
}

bool leadsThroughLink(const std::filesystem::path& path) {
    std::filesystem::path growing = "/";
    for (const auto& component : std::filesystem::path(standardizedPath(path)).relative_path())
        if (isSymbolicLink(growing /= component))
            return true;
    return false;
}

bool liesBelow(const std::filesystem::path& candidate, const std::filesystem::path& root) {
    const std::string path = standardizedPath(candidate).native();
    const std::string rootPath = standardizedPath(root).native();
    return path != rootPath && path.starts_with(rootPath + "/");
}

bool isSafeCandidate(const std::filesystem::path& candidate, const std::filesystem::path& root) {
    return liesBelow(candidate, root) && !isSymbolicLink(candidate);
}

bool isSymbolicLink(const std::filesystem::path& path) {
    const auto facts = readItemFacts(standardizedPath(path));
    return facts && facts->kind == ItemFacts::Kind::symbolicLink;
}

} // namespace vantry::CleanupScanner
