#include "cleanup/scan/CleanupScanner.h"

#include "cleanup/scan/CleanupPlaces.h"
#include "cleanup/scan/DeveloperFinders.h"
#include "cleanup/scan/DeviceFinders.h"
#include "cleanup/scan/OldFileFinders.h"
#include "cleanup/scan/OrphanFinder.h"
#include "cleanup/scan/ScanStates.h"
#include "cleanup/scan/UsageMeasurement.h"
#include "cleanup/scan/WorkerHost.h"
#include "storage/StorageReader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

using namespace std::string_view_literals;

constexpr std::chrono::seconds findingTime{10};
constexpr std::chrono::seconds measuringTime{8}; // of each of the two passes

constexpr std::array cachesOfOtherFinders{"Homebrew"sv, "CocoaPods"sv, "org.swift.swiftpm"sv};

struct OldFilesUse {
    CleanupCategory category;
    std::string_view reason;
    std::int64_t minimumSize;
    std::size_t maximumCount;
};

constexpr std::array<OldFilesUse, 5> oldFilesUses{{
    {CleanupCategory::log, "Old diagnostic record. Apps and macOS do not need this file to run.", 524'288, 40},
    {CleanupCategory::crashReport, "Old crash report used only to diagnose a past problem.", 524'288, 30},
    {CleanupCategory::installer, "Downloaded more than 21 days ago. Removing it does not uninstall the app.", 5'242'880,
     30},
    {CleanupCategory::archive, "Not changed for 45 days. It may be your only copy, so open it before deciding.",
     26'214'400, 30},
    {CleanupCategory::interruptedDownload, "An unfinished download that has not changed for at least 14 days.",
     5'242'880, 20},
}};

/// Asks for each folder once in a scan: a finder's answer serves the states and the metrics, too. What was not complete
/// is asked for again, with the time that is left then.
class RememberingWorkers : public ScanWorkers {
public:
    explicit RememberingWorkers(ScanWorkers& workers) : workers_(workers) {}

    [[nodiscard]] DirectoryMetrics directoryMetrics(const std::filesystem::path& folder, Deadline deadline) override {
        if (const auto known = metrics_.find(folder); known != metrics_.end())
            return known->second;
        const auto answer = workers_.directoryMetrics(folder, deadline);
        if (answer.complete)
            metrics_.emplace(folder, answer);
        return answer;
    }
    [[nodiscard]] ShallowChildren shallowChildren(const std::filesystem::path& folder, Deadline deadline) override {
        if (const auto known = children_.find(folder); known != children_.end())
            return known->second;
        auto answer = workers_.shallowChildren(folder, deadline);
        if (answer.complete && answer.urls.size() <= mostRemembered)
            children_.emplace(folder, answer);
        return answer;
    }
    [[nodiscard]] PropertyListTexts propertyListTexts(std::span<const std::filesystem::path> files,
                                                      std::span<const std::string> keys, Deadline deadline) override {
        return workers_.propertyListTexts(files, keys, deadline);
    }

private:
    static constexpr std::size_t mostRemembered = 10'000; // entries of one folder

    ScanWorkers& workers_;
    std::map<std::filesystem::path, DirectoryMetrics> metrics_;
    std::map<std::filesystem::path, ShallowChildren> children_;
};

std::vector<CleanupCandidate> oldCaches(ScanContext& context) {
    const auto category = CleanupCategory::cache;
    return oldDirectoryChildren(
        context, {.folder = approvedRoots(category, context.environment()).front(),
                  .category = category,
                  .reason = "An app can normally recreate this. It has not changed for at least 30 days.",
                  .olderThan = minimumAge(category),
                  .minimumSize = 26'214'400,
                  .maximumCount = 35,
                  .excludedNames = cachesOfOtherFinders});
}

std::vector<CleanupCandidate> oldFiles(ScanContext& context, const OldFilesUse& use) {
    return oldRegularFiles(context, {.folder = approvedRoots(use.category, context.environment()).front(),
                                     .category = use.category,
                                     .reason = use.reason,
                                     .olderThan = minimumAge(use.category),
                                     .minimumSize = use.minimumSize,
                                     .maximumCount = use.maximumCount,
                                     .extensions = matchedExtensions(use.category)});
}

std::vector<CleanupCandidate> findCandidates(ScanContext& context,
                                             std::span<const std::string> runningBundleIdentifiers) {
    std::vector<CleanupCandidate> candidates;
    const auto append = [&](std::vector<CleanupCandidate> found) {
        std::ranges::move(found, std::back_inserter(candidates));
    };
    append(oldCaches(context));
    for (const auto& use : oldFilesUses)
        append(oldFiles(context, use));
    append(oldRegularFiles(context, largeDownloadsRule(context.environment())));
    append(developerCandidates(context));
    append(macOSInstallers(context));
    append(orphanedAppData(context, runningBundleIdentifiers));
    append(deviceCandidates(context));
    return candidates;
}

} // namespace

std::vector<CleanupCandidate> withoutDuplicates(std::vector<CleanupCandidate> candidates) {
    std::vector<CleanupCandidate> kept;
    std::unordered_map<std::string, std::size_t> places;
    for (auto& candidate : candidates) {
        const auto [place, isNew] = places.try_emplace(candidate.id(), kept.size());
        if (isNew)
            kept.push_back(std::move(candidate));
        else if (auto& stored = kept[place->second];
                 stored.confidence == CleanupConfidence::review && candidate.confidence == CleanupConfidence::suggested)
            stored = std::move(candidate);
    }
    return kept;
}

void sortForReport(std::vector<CleanupCandidate>& candidates) {
    const auto key = [](const CleanupCandidate& candidate) {
        return std::tuple(rawValue(area(candidate.category)), candidate.confidence == CleanupConfidence::review,
                          -candidate.size);
    };
    std::ranges::stable_sort(candidates, std::ranges::less(), key);
}

void mergeLimitedCategories(const std::set<CleanupCategory>& limited,
                            std::map<CleanupCategory, CleanupScanState>& states) {
    for (const auto category : limited)
        if (const auto state = states.find(category);
            state != states.end() && state->second == CleanupScanState::checked)
            state->second = CleanupScanState::limited;
}

CleanupScanReport scan(const ScanEnvironment& environment, ScanWorkers& askedWorkers,
                       std::span<const std::string> runningBundleIdentifiers) {
    const auto start = std::chrono::steady_clock::now();
    ScanBudget budget{.deadline = start + findingTime, .limitedCategories = {}};
    RememberingWorkers workers(askedWorkers);
    ScanContext context(environment, workers, budget);
    auto candidates = withoutDuplicates(findCandidates(context, runningBundleIdentifiers));
    sortForReport(candidates);
    auto states = scanStates(workers, environment, deadlineIn(measuringTime));
    mergeLimitedCategories(budget.limitedCategories, states);
    auto metrics = measureCategoryUsage(workers, environment, candidates, deadlineIn(measuringTime));
    auto snapshot = StorageReader::readBasicSystemVolume();
    return {.candidates = std::move(candidates),
            .states = std::move(states),
            .metrics = std::move(metrics),
            .storageSnapshot = std::move(snapshot),
            .duration = std::chrono::steady_clock::now() - start};
}

CleanupScanReport scan(const ScanEnvironment& environment, std::span<const std::string> runningBundleIdentifiers) {
    WorkerHost workers(environment.workers);
    return scan(environment, workers, runningBundleIdentifiers);
}

} // namespace vantry::CleanupScanner
