#include "cleanup/finding/CleanupScanner.h"

#include "cleanup/finding/DeveloperFinders.h"
#include "cleanup/finding/DeviceFinders.h"
#include "cleanup/finding/OldFileFinders.h"
#include "cleanup/finding/OrphanFinder.h"
#include "cleanup/finding/ScanStates.h"
#include "cleanup/finding/UsageMeasurement.h"
#include "cleanup/measuring/WorkerHost.h"
#include "cleanup/model/CleanupRules.h"
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

constexpr std::chrono::seconds questionTime{60}; // for the user to answer
constexpr std::chrono::seconds findingTime{10};
constexpr std::chrono::seconds measuringTime{8}; // of each of the two passes

/// Measures and lists each folder once in a scan: the states and the metrics reuse the answers of the finders. An
/// incomplete answer is not kept: the folder is asked for again, with the time that is left then.
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
    [[nodiscard]] ChildrenMetrics childrenMetrics(const std::filesystem::path& folder, Deadline deadline) override {
        auto answer = workers_.childrenMetrics(folder, deadline);
        for (const auto& [name, metrics] : answer.children)
            metrics_.emplace(folder / name, metrics);
        if (answer.whole.complete)
            metrics_.emplace(folder, answer.whole);
        return answer;
    }
    [[nodiscard]] DirectoryMetrics diskUsage(const std::filesystem::path& path, std::span<const std::string> endings,
                                             Deadline deadline) override {
        return workers_.diskUsage(path, endings, deadline);
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
    [[nodiscard]] std::optional<std::set<std::string>> bundleIdentifiers(const ApplicationPlaces& places,
                                                                         Deadline deadline) override {
        return workers_.bundleIdentifiers(places, deadline);
    }

private:
    static constexpr std::size_t mostRemembered = 10'000; // entries of one folder

    ScanWorkers& workers_;
    std::map<std::filesystem::path, DirectoryMetrics> metrics_;
    std::map<std::filesystem::path, ShallowChildren> children_;
};

std::vector<std::filesystem::path> rootsOfAllCategories(const CleanupPlaces& places) {
    std::vector<std::filesystem::path> roots;
    for (const auto& row : allCleanupCategories)
        for (auto& root : approvedRoots(row.value, places))
            if (std::ranges::count(roots, root) == 0)
                roots.push_back(std::move(root));
    return roots;
}

std::vector<CleanupCandidate> findCandidates(ScanContext& context,
                                             std::span<const std::string> runningBundleIdentifiers) {
    std::vector<CleanupCandidate> candidates;
    const auto append = [&](std::vector<CleanupCandidate> found) {
        std::ranges::move(found, std::back_inserter(candidates));
    };
    const auto rulesOf = [&](CleanupCategory category) { return cleanupRules(category, context.environment().places); };
    for (const auto& rule : rulesOf(CleanupCategory::cache))
        append(oldDirectoryChildren(context, rule));
    for (const auto category :
         {CleanupCategory::log, CleanupCategory::crashReport, CleanupCategory::installer, CleanupCategory::archive,
          CleanupCategory::interruptedDownload, CleanupCategory::largeDownload})
        for (const auto& rule : rulesOf(category))
            append(oldRegularFiles(context, rule));
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
    if (environment.questions)
        environment.questions->ask(rootsOfAllCategories(environment.places), questionTime,
                                   environment.workers.stopSwitch.get());
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
            .duration = std::chrono::steady_clock::now() - start,
            .incompletePaths = std::move(budget.incompletePaths)};
}

CleanupScanReport scan(const ScanEnvironment& environment, std::span<const std::string> runningBundleIdentifiers) {
    WorkerHost workers(environment.workers);
    return scan(environment, workers, runningBundleIdentifiers);
}

} // namespace vantry::CleanupScanner
