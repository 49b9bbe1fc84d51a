#include "cleanup/finding/UsageMeasurement.h"

#include "base/ByteSum.h"
#include "cleanup/finding/DeveloperFinders.h"
#include "cleanup/finding/OldFileFinders.h"
#include "cleanup/gate/SafePaths.h"
#include "cleanup/model/CleanupRules.h"
#include "platform/ItemFacts.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

/// A sum of bytes that records an overflow.
class ByteSum {
public:
    void add(std::int64_t bytes) { overflowed_ = !addBytes(sum_, std::max<std::int64_t>(bytes, 0)) || overflowed_; }
    void missedSomething() { missed_ = true; }
    [[nodiscard]] CleanupByteAmount amount() const {
        return overflowed_ || missed_ ? CleanupByteAmount::atLeast(sum_) : CleanupByteAmount::exact(sum_);
    }
    [[nodiscard]] std::int64_t value() const { return sum_; }

private:
    std::int64_t sum_ = 0;
    bool overflowed_ = false;
    bool missed_ = false;
};

CleanupByteAmount amountOf(const DirectoryMetrics& metrics) {
    if (metrics.complete)
        return CleanupByteAmount::exact(std::max<std::int64_t>(metrics.size, 0));
    return metrics.size > 0 ? CleanupByteAmount::atLeast(metrics.size) : CleanupByteAmount::unavailable();
}

bool isMissing(const Result<ItemFacts>& facts) { return !facts && facts.error().kind == ErrorKind::notFound; }

// Visits the regular files directly in `folder` until the deadline. False if some may be missing.
template <class Visit>
bool visitRegularFiles(ScanWorkers& workers, const std::filesystem::path& folder, Deadline deadline, Visit visit) {
    const auto children = workers.shallowChildren(folder, deadline);
    bool all = children.complete;
    for (const auto& url : children.urls) {
        if (hasPassed(deadline))
            return false;
        const auto facts = readItemFacts(url);
        if (facts && facts->kind == ItemFacts::Kind::regularFile)
            visit(url, *facts);
        all = all && (facts || isMissing(facts));
    }
    return all;
}

CleanupByteAmount measureRoots(ScanWorkers& workers, std::span<const std::filesystem::path> places, Deadline deadline) {
    std::vector<CleanupByteAmount> amounts;
    for (const auto& place : places)
        amounts.push_back(measureRoot(workers, place, deadline));
    return combineAmounts(amounts);
}

// Files as well as folders.
CleanupByteAmount measureWhatIsThere(ScanWorkers& workers, std::span<const std::filesystem::path> places,
                                     Deadline deadline) {
    std::vector<CleanupByteAmount> amounts;
    for (const auto& place : places)
        amounts.push_back(isMissing(readItemFacts(place)) ? CleanupByteAmount::exact(0)
                                                          : amountOf(workers.directoryMetrics(place, deadline)));
    return combineAmounts(amounts);
}

} // namespace

CleanupByteAmount measureRoot(ScanWorkers& workers, const std::filesystem::path& place, Deadline deadline) {
    const auto facts = readItemFacts(place);
    if (isMissing(facts))
        return CleanupByteAmount::exact(0);
    if (facts && facts->kind != ItemFacts::Kind::folder)
        return CleanupByteAmount::unavailable();
    return amountOf(workers.directoryMetrics(place, deadline));
}

CleanupByteAmount measureMacOSInstallerUsage(ScanWorkers& workers, const CleanupPlaces& places, Deadline deadline) {
    const auto root = approvedRoots(CleanupCategory::macOSInstaller, places).front();
    const auto children = workers.shallowChildren(root, deadline);
    if (!children.complete)
        return CleanupByteAmount::unavailable();
    std::vector<CleanupByteAmount> amounts;
    for (const auto& url : children.urls)
        if (isMacOSInstaller(url) && !isSymbolicLink(url))
            amounts.push_back(amountOf(workers.directoryMetrics(url, deadline)));
    return combineAmounts(amounts);
}

std::map<CleanupCategory, CleanupByteAmount>
measureDownloadUsage(ScanWorkers& workers, const ScanEnvironment& environment, Deadline deadline) {
    const auto rulesOf = [&](CleanupCategory category) { return cleanupRules(category, environment.places); };
    const auto large = rulesOf(CleanupCategory::largeDownload).front();
    const std::array others{rulesOf(CleanupCategory::installer).front(), rulesOf(CleanupCategory::archive).front(),
                            rulesOf(CleanupCategory::interruptedDownload).front()};
    const auto cutoff = cutoffDate(environment.now(), large.olderThan);
    const auto categoryOf = [&](const std::filesystem::path& url,
                                const ItemFacts& facts) -> std::optional<CleanupCategory> {
        const auto rule =
            std::ranges::find_if(others, [&](const auto& other) { return matchesExtensions(other, url); });
        if (rule != others.end())
            return rule->category;
        return matchesExtensions(large, url) && isOldRegularFile(large, facts, cutoff)
                   ? std::optional(CleanupCategory::largeDownload)
                   : std::nullopt;
    };
    std::map<CleanupCategory, ByteSum> sums{{CleanupCategory::installer, {}},
                                            {CleanupCategory::archive, {}},
                                            {CleanupCategory::interruptedDownload, {}},
                                            {CleanupCategory::largeDownload, {}}};
    const bool all = visitRegularFiles(workers, large.folder, deadline, [&](const auto& url, const ItemFacts& facts) {
        if (const auto category = categoryOf(url, facts))
            sums[*category].add(facts.allocatedBytes.value_or(0));
    });
    std::map<CleanupCategory, CleanupByteAmount> amounts;
    for (auto& [category, sum] : sums) {
        if (!all)
            sum.missedSomething();
        amounts[category] = sum.amount();
    }
    return amounts;
}

CleanupByteAmount measureMatchingFileUsage(ScanWorkers& workers, std::span<const std::filesystem::path> roots,
                                           std::span<const std::string_view> extensions, Deadline deadline) {
    std::vector<CleanupByteAmount> amounts;
    for (const auto& root : roots) {
        if (isMissing(readItemFacts(root)))
            continue;
        ByteSum sum;
        if (!visitRegularFiles(workers, root, deadline, [&](const auto& url, const ItemFacts& facts) {
                if (std::ranges::count(extensions, lowercaseExtension(url)) != 0)
                    sum.add(facts.allocatedBytes.value_or(0));
            }))
            sum.missedSomething();
        amounts.push_back(sum.amount());
    }
    return combineAmounts(amounts);
}

CleanupByteAmount combineAmounts(std::span<const CleanupByteAmount> amounts) {
    if (!amounts.empty() && std::ranges::all_of(amounts, [](const auto& amount) { return !amount.knownBytes(); }))
        return CleanupByteAmount::unavailable();
    ByteSum sum;
    for (const auto& amount : amounts) {
        sum.add(amount.knownBytes().value_or(0));
        if (!amount.isExact())
            sum.missedSomething();
    }
    return sum.amount();
}

std::map<CleanupCategory, CleanupCategoryMetric> measureCategoryUsage(ScanWorkers& workers,
                                                                      const ScanEnvironment& environment,
                                                                      std::span<const CleanupCandidate> candidates,
                                                                      Deadline deadline) {
    const auto roots = [&](CleanupCategory category) { return approvedRoots(category, environment.places); };
    std::map<CleanupCategory, CleanupCategoryMetric> metrics;
    for (const auto category : {CleanupCategory::cache, CleanupCategory::log})
        metrics[category].occupied = measureRoots(workers, roots(category), deadline);
    metrics[CleanupCategory::crashReport].occupied = CleanupByteAmount::exact(0);
    for (const auto& [category, amount] : measureDownloadUsage(workers, environment, deadline))
        metrics[category].occupied = amount;
    metrics[CleanupCategory::macOSInstaller].occupied =
        measureMacOSInstallerUsage(workers, environment.places, deadline);
    for (const auto category : {CleanupCategory::orphan, CleanupCategory::developerBuild})
        metrics[category].occupied = measureRoots(workers, roots(category), deadline);
    metrics[CleanupCategory::developerCache].occupied =
        measureWhatIsThere(workers, roots(CleanupCategory::developerCache), deadline);
    for (const auto category : {CleanupCategory::developerArchive, CleanupCategory::deviceBackup})
        metrics[category].occupied = measureRoots(workers, roots(category), deadline);
    metrics[CleanupCategory::deviceSoftware].occupied = measureMatchingFileUsage(
        workers, roots(CleanupCategory::deviceSoftware),
        cleanupRules(CleanupCategory::deviceSoftware, environment.places).front().extensions, deadline);

    std::map<CleanupCategory, ByteSum> reviewable;
    for (const auto& candidate : candidates) {
        reviewable[candidate.category].add(candidate.size);
        metrics[candidate.category].reviewableItemCount += 1;
    }
    for (const auto& [category, sum] : reviewable)
        metrics[category].reviewableBytes = sum.value();
    return metrics;
}

} // namespace vantry::CleanupScanner
