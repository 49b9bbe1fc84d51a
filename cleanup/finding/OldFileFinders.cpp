#include "cleanup/finding/OldFileFinders.h"

#include "base/Utf8.h"
#include "cleanup/gate/SafePaths.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

bool contains(std::span<const std::string_view> texts, std::string_view text) {
    return std::ranges::find(texts, text) != texts.end();
}

// The gate refuses whatever lies below a link, so such files are not offered either.
bool isOutOfReach(const CleanupRule& rule, const std::filesystem::path& home) {
    return !isSafeCandidate(rule.folder, home) ||
           (removalDisposition(rule.category) == CleanupRemovalDisposition::directTrash &&
            leadsThroughLink(rule.folder));
}

std::vector<std::filesystem::path> entries(ScanContext& context, const CleanupRule& rule) {
    if (isOutOfReach(rule, context.environment().places.home) || context.isOver(rule.category))
        return {};
    return context.list(rule.folder, rule.category);
}

std::vector<CleanupCandidate> largestFirst(ScanContext& context, const CleanupRule& rule,
                                           std::vector<CleanupCandidate> candidates) {
    std::ranges::stable_sort(candidates, std::ranges::greater(), &CleanupCandidate::size);
    if (candidates.size() > rule.maximumCount) {
        context.limit(rule.category);
        candidates.erase(candidates.begin() + static_cast<std::ptrdiff_t>(rule.maximumCount), candidates.end());
    }
    return candidates;
}

} // namespace

SystemTime cutoffDate(SystemTime now, std::chrono::days olderThan) {
    return now > SystemTime::min() + olderThan ? SystemTime(now - olderThan) : SystemTime::min();
}

bool isOldRegularFile(const CleanupRule& rule, const ItemFacts& facts, SystemTime cutoff) {
    return facts.kind == ItemFacts::Kind::regularFile && facts.contentModificationDate &&
           *facts.contentModificationDate < cutoff && facts.allocatedBytes.value_or(0) >= rule.minimumSize;
}

bool isOldFolder(const CleanupRule& rule, const std::filesystem::path& path, const ItemFacts& facts,
                 SystemTime cutoff) {
    return facts.kind == ItemFacts::Kind::folder && !contains(rule.excludedNames, path.filename().native()) &&
           facts.contentModificationDate && *facts.contentModificationDate < cutoff;
}

bool isOldInside(const CleanupRule& rule, const DirectoryMetrics& metrics, SystemTime cutoff) {
    // An empty folder counts with its own date.
    return (!metrics.newestModificationDate || *metrics.newestModificationDate < cutoff) &&
           metrics.size >= rule.minimumSize;
}

std::vector<CleanupCandidate> oldRegularFiles(ScanContext& context, const CleanupRule& rule) {
    const auto cutoff = cutoffDate(context.environment().now(), rule.olderThan);
    std::vector<CleanupCandidate> candidates;
    for (const auto& url : entries(context, rule)) {
        if (context.isOver(rule.category))
            break;
        if (!matchesExtensions(rule, url))
            continue;
        const auto item = context.look(url, rule.category,
                                       [&](const ItemFacts& facts) { return isOldRegularFile(rule, facts, cutoff); });
        if (item && liesBelow(url, rule.folder))
            candidates.push_back(context.candidate(
                url, item->fingerprint, withReplacementCharacters(url.filename().native()), rule.category, rule.reason,
                {.size = item->facts.allocatedBytes.value_or(0), .complete = true}));
    }
    return largestFirst(context, rule, std::move(candidates));
}

std::vector<CleanupCandidate> oldDirectoryChildren(ScanContext& context, const CleanupRule& rule) {
    const auto cutoff = cutoffDate(context.environment().now(), rule.olderThan);
    std::vector<CleanupCandidate> candidates;
    bool measuredAhead = false;
    for (const auto& url : entries(context, rule)) {
        if (context.isOver(rule.category))
            break;
        const auto item = context.look(url, rule.category,
                                       [&](const ItemFacts& facts) { return isOldFolder(rule, url, facts, cutoff); });
        if (!item || !liesBelow(url, rule.folder))
            continue;
        if (!std::exchange(measuredAhead, true))
            context.measureAhead(rule.folder);
        const auto metrics = context.measure(url, rule.category);
        if (metrics && isOldInside(rule, *metrics, cutoff))
            candidates.push_back(
                context.candidate(url, item->fingerprint, displayName(url), rule.category, rule.reason, *metrics));
    }
    return largestFirst(context, rule, std::move(candidates));
}

} // namespace vantry::CleanupScanner
