#include "cleanup/finding/CleanupScanner.h"

#include "cleanup/model/CleanupRules.h"
#include "tests/cleanup/finding/ScanFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using testing::ElementsAre;
using testing::IsEmpty;

class ScanReport : public testing::Test, public ScanFixture {
protected:
    /// Makes every place of every category, none of which can be listed.
    std::vector<std::filesystem::path> placesThatHang() {
        std::vector<std::filesystem::path> places;
        for (const auto& row : allCleanupCategories)
            for (const auto& place : approvedRoots(row.value, environment.places))
                places.push_back(directory(place));
        workers.hung.insert(places.begin(), places.end());
        return places;
    }
    std::vector<CleanupRule> rulesOf(std::initializer_list<CleanupCategory> categories) {
        std::vector<CleanupRule> rules;
        for (const auto category : categories)
            std::ranges::move(cleanupRules(category, environment.places), std::back_inserter(rules));
        return rules;
    }
    [[nodiscard]] static CleanupCandidate candidate(const char* path, CleanupCategory category, std::int64_t size,
                                                    CleanupConfidence confidence) {
        return CleanupCandidate::withFingerprint(path, path, category, "", size, confidence, {}, {});
    }
};

constexpr auto review = CleanupConfidence::review;
constexpr auto suggested = CleanupConfidence::suggested;

TEST_F(ScanReport, ADuplicatePathKeepsItsFirstFindingUnlessALaterOneIsLowRisk) {
    using Category = CleanupCategory;
    auto kept = withoutDuplicates(
        {candidate("/a", Category::archive, 1, review), candidate("/b", Category::installer, 2, suggested),
         candidate("/./a/", Category::installer, 3, suggested), candidate("/b", Category::archive, 4, review),
         candidate("/c", Category::archive, 5, review), candidate("/x/../c", Category::largeDownload, 6, review)});
    ASSERT_EQ(kept.size(), 3U);
    EXPECT_EQ(kept[0].size, 3) << "low risk replaces, in the place of the first";
    EXPECT_EQ(kept[1].size, 2) << "low risk stays";
    EXPECT_EQ(kept[2].size, 5) << "the first of equals stays";
}

TEST_F(ScanReport, IsSortedByAreaConfidenceAndSizeAndOtherwiseKeepsTheOrder) {
    using Category = CleanupCategory;
    std::vector candidates{candidate("/device", Category::deviceBackup, 900, review),
                           candidate("/installer", Category::installer, 900, suggested),
                           candidate("/small", Category::log, 1, suggested),
                           candidate("/cache", Category::cache, 500, review),
                           candidate("/equal 1", Category::log, 7, suggested),
                           candidate("/equal 2", Category::crashReport, 7, suggested),
                           candidate("/build", Category::developerBuild, 1, review),
                           candidate("/orphan", Category::orphan, 1, review)};
    sortForReport(candidates);
    EXPECT_THAT(namesOf(candidates),
                ElementsAre("equal 1", "equal 2", "small", "cache", "installer", "orphan", "build", "device"));
}

TEST_F(ScanReport, OnlyTheStateCheckedBecomesLimited) {
    const CleanupScanState others[] = {CleanupScanState::limited, CleanupScanState::notPresent,
                                       CleanupScanState::relocated, CleanupScanState::permissionNeeded,
                                       CleanupScanState::unavailable};
    for (const auto state : others) {
        std::map<CleanupCategory, CleanupScanState> states{{CleanupCategory::log, state}};
        mergeLimitedCategories({CleanupCategory::log}, states);
        EXPECT_EQ(states.at(CleanupCategory::log), state) << title(state);
    }
    std::map<CleanupCategory, CleanupScanState> states{{CleanupCategory::log, CleanupScanState::checked},
                                                       {CleanupCategory::cache, CleanupScanState::checked}};
    mergeLimitedCategories({CleanupCategory::log, CleanupCategory::orphan}, states);
    EXPECT_EQ(states.at(CleanupCategory::log), CleanupScanState::limited);
    EXPECT_EQ(states.at(CleanupCategory::cache), CleanupScanState::checked);
    EXPECT_EQ(states.size(), 2U);
}

TEST_F(ScanReport, OfAnEmptyHomeIsEmptyAndSaysNotPresentEverywhere) {
    const auto report = scan(environment, workers, {});
    EXPECT_THAT(report.candidates, IsEmpty());
    ASSERT_EQ(report.states.size(), allCleanupCategories.size());
    for (const auto& [category, state] : report.states)
        EXPECT_EQ(state, CleanupScanState::notPresent) << rawValue(category);
    EXPECT_EQ(report.metrics.size(), allCleanupCategories.size());
    EXPECT_TRUE(report.storageSnapshot);
}

TEST_F(ScanReport, HoldsItsDuration) {
    const auto pause = std::chrono::milliseconds(20);
    directory("Downloads");
    workers.afterListing = [&](const auto&) { std::this_thread::sleep_for(pause); };
    const auto begin = std::chrono::steady_clock::now();
    const auto report = scan(environment, workers, {});
    EXPECT_LE(report.duration, std::chrono::steady_clock::now() - begin);
    EXPECT_GE(report.duration, pause);
}

TEST_F(ScanReport, FindingHasTenSecondsAndEachOfTheTwoMeasurementsEight) {
    std::ignore = placesThatHang(); // so that each pass asks for itself
    const auto begin = std::chrono::steady_clock::now();
    static_cast<void>(scan(environment, workers, {}));
    const auto end = std::chrono::steady_clock::now();
    using namespace std::chrono_literals;
    std::vector<Deadline> passes;
    for (const auto deadline : workers.deadlines)
        if (passes.empty() || passes.back() != deadline)
            passes.push_back(deadline);
    ASSERT_EQ(passes.size(), 3U);
    for (const auto& [deadline, time] : {std::pair(passes[0], 10s), {passes[1], 8s}, {passes[2], 8s}}) {
        EXPECT_GE(deadline, begin + time);
        EXPECT_LE(deadline, end + time);
    }
}

TEST_F(ScanReport, TheFindersOfFilesUseTheirRules) {
    for (const auto& rule : rulesOf({CleanupCategory::log, CleanupCategory::crashReport, CleanupCategory::installer,
                                     CleanupCategory::archive, CleanupCategory::interruptedDownload,
                                     CleanupCategory::largeDownload, CleanupCategory::deviceSoftware})) {
        ScanFixture made;
        const auto place = rule.folder.lexically_relative(home());
        const std::string extension(rule.extensions.empty() ? "mov" : rule.extensions.back());
        const auto path = [&](const std::string& name) { return place / (name + "." + extension); };
        const auto old = rule.olderThan + std::chrono::nanoseconds(1);
        for (std::size_t i = 0; i <= rule.maximumCount; ++i)
            made.file(path("old " + std::to_string(i)), rule.minimumSize, old);
        made.file(path("young"), rule.minimumSize, rule.olderThan);
        made.file(path("small"), rule.minimumSize - 131072, old);
        made.file(place / "old.of another type", rule.minimumSize / 2, old);
        const auto report = scan(made.environment, made.workers, {});
        EXPECT_EQ(report.candidates.size(), rule.maximumCount) << place << extension;
        for (const auto& found : report.candidates) {
            EXPECT_EQ(found.category, rule.category);
            EXPECT_EQ(found.reason, rule.reason);
            EXPECT_EQ(found.confidence == suggested, found.canMoveToTrash());
            EXPECT_TRUE(found.title.starts_with("old ")) << found.title;
        }
        EXPECT_EQ(report.states.at(rule.category), CleanupScanState::limited) << extension;
    }
}

TEST_F(ScanReport, TheFindersOfFoldersUseTheirRules) {
    for (const auto& rule : rulesOf({CleanupCategory::cache, CleanupCategory::developerArchive})) {
        ScanFixture made;
        const auto place = rule.folder.lexically_relative(home());
        const auto add = [&](const std::string& name, std::int64_t size, std::chrono::nanoseconds age) {
            made.workers.metrics[made.folderWithFile(place / name, 4096, age)] = {size, made.now - age, true};
        };
        const auto old = rule.olderThan + std::chrono::nanoseconds(1);
        for (std::size_t i = 0; i <= rule.maximumCount; ++i)
            add("old " + std::to_string(i), rule.minimumSize, old);
        add("young", rule.minimumSize, rule.olderThan);
        add("small", rule.minimumSize - 1, old);
        const auto report = scan(made.environment, made.workers, {});
        EXPECT_EQ(report.candidates.size(), rule.maximumCount) << place;
        for (const auto& found : report.candidates) {
            EXPECT_EQ(found.category, rule.category);
            EXPECT_EQ(found.reason, rule.reason);
            EXPECT_TRUE(found.title.starts_with("old ")) << found.title;
        }
        EXPECT_EQ(report.states.at(rule.category), CleanupScanState::limited) << place;
    }
}

TEST_F(ScanReport, CachesOfCodingToolsAreOfferedByTheirOwnFinder) {
    for (const char* name : {"Homebrew", "CocoaPods", "org.swift.swiftpm"})
        folderWithFile(std::filesystem::path("Library/Caches") / name, 30 * mebibyte, days(31));
    const auto report = scan(environment, workers, {});
    EXPECT_THAT(namesOf(report.candidates), ElementsAre("Homebrew", "CocoaPods", "org.swift.swiftpm"));
    for (const auto& found : report.candidates)
        EXPECT_EQ(found.category, CleanupCategory::developerCache);
}

TEST_F(ScanReport, ACategoryThatIsLimitedButMissingSaysNotPresent) {
    directory("Library");
    EXPECT_EQ(scan(environment, workers, {}).states.at(CleanupCategory::log), CleanupScanState::notPresent);
}

TEST_F(ScanReport, OfAHomeWherePlacesHangSaysUnavailableEverywhere) {
    for (const auto& place : placesThatHang())
        workers.metrics[place] = {};
    const auto report = scan(environment, workers, {});
    EXPECT_THAT(report.candidates, IsEmpty());
    for (const auto& [category, state] : report.states)
        EXPECT_EQ(state, CleanupScanState::unavailable) << rawValue(category);
    for (const auto& [category, metric] : report.metrics)
        EXPECT_EQ(metric.occupied.isExact(), category == CleanupCategory::crashReport) << rawValue(category);
}

TEST_F(ScanReport, ASizeThatWasCutShortIsALowerBoundAndAnUnknownSizeIsNotOffered) {
    std::vector<std::filesystem::path> folders;
    const auto made = [&](const std::string& path) { folders.push_back(folderWithFile(path, 4096, days(200))); };
    for (const char* name : {"cut", "unknown", "whole"}) {
        made(std::string("Library/Caches/") + name);
        made(std::string("Library/Saved Application State/com.example.") + name + ".savedState");
        made((applications() / ("Install macOS " + std::string(name) + ".app")).native());
        made(std::string("Library/Application Support/MobileSync/Backup/12345678901234567890-") + name);
        made(std::string("Library/Developer/Xcode/Archives/") + name);
    }
    folderWithFile("Library/Application Support/MobileSync/Backup/12345678901234567890-new", 4096, days(1));
    for (const char* place : {".npm/_cacache", ".gradle/caches"})
        made(place);
    constexpr std::int64_t large = 300 * mebibyte;
    std::set<std::string> cut;
    for (const auto& folder : folders) {
        const auto name = folder.filename().native();
        const bool isCut = name.find("cut") != std::string::npos || name == "caches";
        const bool isUnknown = name.find("unknown") != std::string::npos || name == "_cacache";
        workers.metrics[folder] = {isUnknown ? 0 : large, now - days(200), !isCut && !isUnknown};
        if (isCut)
            cut.insert(folder.native());
    }
    file("Downloads/old.dmg", 6 * mebibyte, days(200));
    const auto report = scan(environment, workers, {});
    EXPECT_EQ(report.incompletePaths, cut);
    EXPECT_EQ(report.candidates.size(), 12U) << "two of each of five kinds, the folder of a tool, and a file";
    for (const auto& found : report.candidates) {
        EXPECT_EQ(found.url.native().find("unknown"), std::string::npos) << found.url;
        EXPECT_EQ(report.sizeIsLowerBound(found), cut.contains(found.url.native())) << found.url;
    }
}

TEST_F(ScanReport, OnlyWhatCouldNotBeMeasuredAheadIsMeasuredByItself) {
    for (const bool measuresAhead : {true, false}) {
        ScanFixture made;
        made.workers.measuresAhead = measuresAhead;
        made.folderWithFile("Library/Caches/one", 30 * mebibyte, days(40));
        made.folderWithFile("Library/Caches/two", 30 * mebibyte, days(50));
        made.folderWithFile("Library/Caches/recent", 4096, days(1));
        const auto report = scan(made.environment, made.workers, {});
        EXPECT_THAT(namesOf(report.candidates), ElementsAre("one", "two"));
        EXPECT_EQ(report.metrics.at(CleanupCategory::cache).occupied, CleanupByteAmount::exact(60 * mebibyte + 4096));
        EXPECT_EQ(made.workers.timesAsked("measure in " + made.at("Library/Caches").native()), 1);
        for (const char* path : {"Library/Caches", "Library/Caches/one", "Library/Caches/two"})
            EXPECT_EQ(made.workers.timesAsked("measure " + made.at(path).native()), measuresAhead ? 0 : 1) << path;
    }
}

TEST_F(ScanReport, AListingOfMoreThanTenThousandEntriesIsNotKept) {
    const auto folder = directory("Downloads");
    for (int i = 0; i < 10'000; ++i)
        workers.alsoListed.push_back(folder / std::to_string(i));
    static_cast<void>(scan(environment, workers, {}));
    EXPECT_EQ(workers.timesAsked("list " + folder.native()), 1);
    workers.asked.clear();
    workers.alsoListed.push_back(folder / "one more");
    static_cast<void>(scan(environment, workers, {}));
    EXPECT_GT(workers.timesAsked("list " + folder.native()), 1);
}

TEST_F(ScanReport, TheUserIsAskedAboutEachFolderOnce) {
    std::vector<std::filesystem::path> asked;
    environment.questions =
        FolderQuestions::create([&, scanning = std::this_thread::get_id()](const std::filesystem::path& folder) {
            if (std::this_thread::get_id() != scanning) // which only looks whether the answer has changed
                asked.push_back(folder);
            return FolderAccess::readable;
        });
    static_cast<void>(scan(environment, workers, {}));
    const std::set<std::filesystem::path> different(asked.begin(), asked.end());
    EXPECT_EQ(asked.size(), different.size());
    for (const auto& row : allCleanupCategories)
        for (const auto& place : approvedRoots(row.value, environment.places))
            EXPECT_TRUE(different.contains(place)) << place;
}

TEST_F(ScanReport, AFolderIsListedAndMeasuredAgainOnlyWhenTheFirstAnswerWasNotComplete) {
    folderWithFile(".npm/_cacache", 4096, days(1));
    const auto incomplete = folderWithFile(".gradle/caches", 4096, days(1));
    workers.metrics[incomplete] = {4096, now, false};
    directory("Downloads");
    const auto hung = directory("Library/Logs");
    workers.hung.insert(hung);
    const auto report = scan(environment, workers, {});
    EXPECT_EQ(workers.timesAsked("measure " + at(".npm/_cacache").native()), 1);
    EXPECT_EQ(workers.timesAsked("list " + at("Downloads").native()), 1);
    EXPECT_EQ(workers.timesAsked("measure " + incomplete.native()), 2);
    EXPECT_EQ(workers.timesAsked("list " + hung.native()), 2);
    EXPECT_EQ(report.metrics.at(CleanupCategory::developerCache).occupied, CleanupByteAmount::atLeast(8192));
}

} // namespace
} // namespace vantry::CleanupScanner
