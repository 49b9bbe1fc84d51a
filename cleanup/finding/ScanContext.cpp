#include "cleanup/finding/ScanContext.h"

#include <tuple>
#include <utility>

namespace vantry {

bool ScanContext::isOver(CleanupCategory category) {
    const bool over = hasPassed(budget_.deadline);
    if (over)
        limit(category);
    return over;
}

std::optional<std::vector<std::filesystem::path>> ScanContext::listed(const std::filesystem::path& folder,
                                                                      CleanupCategory category) {
    auto children = workers_.shallowChildren(folder, budget_.deadline);
    if (children.complete)
        return std::move(children.urls);
    limit(category);
    return std::nullopt;
}

std::vector<std::filesystem::path> ScanContext::list(const std::filesystem::path& folder, CleanupCategory category) {
    return listed(folder, category).value_or(std::vector<std::filesystem::path>());
}

std::optional<FoundItem> ScanContext::look(const std::filesystem::path& url, CleanupCategory category,
                                           const std::function<bool(const ItemFacts&)>& isWanted) {
    bool wanted = false;
    auto item = readFoundItem(url, [&](const ItemFacts& facts) { return wanted = isWanted(facts); });
    if (!item && item.error().kind != ErrorKind::notFound)
        limit(category);
    return item && wanted ? std::optional(std::move(*item)) : std::nullopt;
}

void ScanContext::measureAhead(const std::filesystem::path& folder) {
    std::ignore = workers_.childrenMetrics(folder, budget_.deadline); // the scanner records it
}

std::optional<DirectoryMetrics> ScanContext::measure(const std::filesystem::path& folder, CleanupCategory category) {
    const auto metrics = workers_.directoryMetrics(folder, budget_.deadline);
    if (!metrics.complete)
        limit(category);
    return metrics.complete || metrics.size > 0 ? std::optional(metrics) : std::nullopt;
}

PropertyListTexts ScanContext::read(std::span<const std::filesystem::path> files, std::span<const std::string> keys,
                                    CleanupCategory category) {
    auto lists = workers_.propertyListTexts(files, keys, budget_.deadline);
    if (!lists.complete)
        limit(category);
    return lists;
}

std::optional<std::set<std::string>> ScanContext::bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places,
                                                                    CleanupCategory category) {
    auto identifiers = workers_.bundleIdentifiers(places, budget_.deadline);
    if (!identifiers)
        limit(category);
    return identifiers;
}

CleanupCandidate ScanContext::candidate(const std::filesystem::path& url, const FileFingerprint& fingerprint,
                                        std::string title, CleanupCategory category, std::string_view reason,
                                        const DirectoryMetrics& metrics) {
    const auto confidence = removalDisposition(category) == CleanupRemovalDisposition::directTrash
                                ? CleanupConfidence::suggested
                                : CleanupConfidence::review;
    auto candidate = CleanupCandidate::withFingerprint(url, std::move(title), category, std::string(reason),
                                                       metrics.size, confidence, fingerprint, environment_.now());
    if (!metrics.complete)
        budget_.incompletePaths.insert(candidate.id());
    return candidate;
}

} // namespace vantry
