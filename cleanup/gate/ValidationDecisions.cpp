#include "cleanup/gate/ValidationDecisions.h"

#include "base/StandardizedPath.h"
#include "cleanup/gate/SafePaths.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

using namespace std::string_view_literals;

constexpr auto missing = "it no longer exists"sv;
constexpr auto linked = "its path now contains a symbolic link"sv;
constexpr auto relocatedRoot = "the approved cleanup folder is missing or relocated"sv;
constexpr auto otherItem = "a different item now occupies this path"sv;

constexpr std::chrono::minutes longestScanAge(5);

enum class DirectCleanup { approved, notAllowed, unknown };

// Both sides are closed lists, so that a new category is not approved by accident.
DirectCleanup directCleanup(CleanupCategory category) {
    switch (category) {
    case CleanupCategory::log:
    case CleanupCategory::crashReport:
    case CleanupCategory::installer:
    case CleanupCategory::interruptedDownload: return DirectCleanup::approved;
    case CleanupCategory::cache:
    case CleanupCategory::archive:
    case CleanupCategory::largeDownload:
    case CleanupCategory::macOSInstaller:
    case CleanupCategory::orphan:
    case CleanupCategory::developerBuild:
    case CleanupCategory::developerCache:
    case CleanupCategory::developerArchive:
    case CleanupCategory::deviceBackup:
    case CleanupCategory::deviceSoftware: return DirectCleanup::notAllowed;
    }
    return DirectCleanup::unknown;
}

// Absent for a moment in the future. Unsigned, since the ends of the time line are further apart than a signed count
// can hold.
std::optional<std::uint64_t> nanosecondsSince(SystemTime then, SystemTime now) {
    if (now < then)
        return std::nullopt;
    const auto count = [](SystemTime time) { return static_cast<std::uint64_t>(time.time_since_epoch().count()); };
    return count(now) - count(then);
}

std::uint64_t nanosecondsIn(std::chrono::nanoseconds duration) { return static_cast<std::uint64_t>(duration.count()); }

std::string_view wrongType(CleanupCategory category) {
    switch (category) {
    case CleanupCategory::log: return "its file type is no longer an approved log";
    case CleanupCategory::crashReport: return "its file type is no longer an approved crash report";
    case CleanupCategory::installer: return "its file type is no longer an approved installer";
    default: return "its file type is no longer an interrupted download";
    }
}

} // namespace

Refusal refusalByScan(CleanupCategory category, SystemTime scannedAt, SystemTime now) {
    if (directCleanup(category) == DirectCleanup::notAllowed)
        return "this type of item is protected from direct cleanup";
    const auto age = nanosecondsSince(scannedAt, now);
    if (!age || *age > nanosecondsIn(longestScanAge))
        return "the scan is more than five minutes old";
    if (directCleanup(category) != DirectCleanup::approved)
        return "this type of item is not approved for direct cleanup";
    return std::nullopt;
}

Refusal refusalByExistence(bool exists) { return exists ? Refusal() : missing; }

Refusal refusalByLinks(bool pathHasLink) { return pathHasLink ? linked : Refusal(); }

std::optional<CleanupRule> approvedRule(CleanupCategory category, const std::filesystem::path& item,
                                        const CleanupPlaces& places) {
    for (auto& rule : cleanupRules(category, places))
        if (item.has_filename() && standardizedPath(rule.folder) == item.parent_path() &&
            liesBelow(rule.folder, places.home))
            return std::move(rule);
    return std::nullopt;
}

Refusal refusalByParent(const std::optional<CleanupRule>& rule) {
    return rule ? Refusal() : "it is not a direct file inside an approved cleanup folder";
}

Refusal refusalByRootPlace(bool isInPlace) { return isInPlace ? Refusal() : relocatedRoot; }

Refusal refusalByKind(const std::optional<PinnedFileFacts>& facts) {
    if (!facts)
        return "its current file details could not be verified";
    // An unknown fact is neither true nor false.
    if (facts->isRegularFile != true || facts->isSymbolicLink != false || facts->isPackage != false ||
        facts->isUbiquitousItem != false)
        return "it is no longer a local, regular file";
    return std::nullopt;
}

Refusal refusalByRoot(const std::optional<PinnedFolderFacts>& root) {
    if (!root || root->isDirectory != true || root->isSymbolicLink != false || !root->volumeIdentifier)
        return "the approved cleanup folder could not be verified";
    return std::nullopt;
}

Refusal refusalByIdentity(const CleanupCandidate& candidate, const PinnedFileFacts& facts,
                          const PinnedFolderFacts& root) {
    const FileFingerprint& current = facts.fingerprint;
    if (!candidate.scannedResourceIdentifier || !candidate.scannedVolumeIdentifier ||
        !candidate.scannedModificationDate || !current.contentModificationDate || !current.resourceIdentifier ||
        !current.volumeIdentifier)
        return "the scan did not capture every identity check required";
    if (current.resourceIdentifier != candidate.scannedResourceIdentifier)
        return otherItem;
    if (current.volumeIdentifier != candidate.scannedVolumeIdentifier ||
        current.volumeIdentifier != root.volumeIdentifier)
        return "it is no longer on the approved folder’s volume";
    if (current.contentModificationDate != candidate.scannedModificationDate)
        return "it was modified after the scan";
    return std::nullopt;
}

Refusal refusalByRule(const CleanupCandidate& candidate, const CleanupRule& rule, const PinnedFileFacts& facts,
                      uid_t user, SystemTime now) {
    if (facts.owner != user)
        return "it is not owned by the current user";
    if ((facts.totalAllocated ? facts.totalAllocated : facts.allocatedBytes) != candidate.size)
        return "its allocated size changed after the scan";
    if (rule.extensions.empty() || !matchesExtensions(rule, standardizedPath(candidate.url)))
        return wrongType(candidate.category);
    const auto date = facts.fingerprint.contentModificationDate;
    const auto age = date ? nanosecondsSince(*date, now) : std::nullopt;
    if (!age || *age < nanosecondsIn(rule.olderThan))
        return "it is no longer old enough for low-risk cleanup";
    return std::nullopt;
}

Refusal refusalByPlace(PinnedPlace place) {
    switch (place) {
    case PinnedPlace::unchanged: return std::nullopt;
    case PinnedPlace::folderMoved: return relocatedRoot;
    case PinnedPlace::missing: return missing;
    case PinnedPlace::link: return linked;
    case PinnedPlace::otherItem: break;
    }
    return otherItem;
}

} // namespace vantry::CleanupScanner
