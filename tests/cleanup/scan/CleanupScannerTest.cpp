#include "cleanup/scan/CleanupScanner.h"

#include "cleanup/scan/CleanupPlaces.h"
#include "tests/cleanup/scan/ScanFixture.h"

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
    [[nodiscard]] static CleanupCandidate candidate(const char* path, CleanupCategory category, std::int64_t size,
                                                    CleanupConfidence confidence) {
        return CleanupCandidate::withFingerprint(path, path, category, "", size, confidence, {}, {});
    }
};

constexpr auto review = CleanupConfidence::review;
constexpr auto suggested = CleanupConfidence::suggested;

TEST_F(ScanReport, OfOnePathTheFirstStaysUnlessALaterOneIsLowRisk) {
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

TEST_F(ScanReport, OnlyWhatWasCheckedBecomesLimited) {
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

TEST_F(ScanReport, OfAnEmptyHomeHasNothingAndSaysNotPresent) {
    const auto report = scan(environment, workers, {});
    EXPECT_THAT(report.candidates, IsEmpty());
    ASSERT_EQ(report.states.size(), allCleanupCategories.size());
    for (const auto& [category, state] : report.states)
        EXPECT_EQ(state, CleanupScanState::notPresent) << rawValue(category);
    EXPECT_EQ(report.metrics.size(), allCleanupCategories.size());
    EXPECT_TRUE(report.storageSnapshot);
}

TEST_F(ScanReport, SaysHowLongItTook) {
    const auto pause = std::chrono::milliseconds(20);
    directory("Downloads");
    workers.afterListing = [&](const auto&) { std::this_thread::sleep_for(pause); };
    const auto begin = std::chrono::steady_clock::now();
    const auto report = scan(environment, workers, {});
    EXPECT_LE(report.duration, std::chrono::steady_clock::now() - begin);
    EXPECT_GE(report.duration, pause);
}

TEST_F(ScanReport, FindingHasTenSecondsAndEachOfTheTwoMeasurementsEight) {
    for (const auto& row : allCleanupCategories)
        for (const auto& place : approvedRoots(row.value, environment)) {
            std::filesystem::create_directories(place);
            workers.hung.insert(place); // so that each pass asks for itself
        }
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

TEST_F(ScanReport, TheFindersUseTheirRules) {
    struct Use {
        CleanupCategory category;
        const char* folder;
        const char* extension;
        int days;
        std::int64_t minimumSize;
        std::size_t maximumCount;
        const char* reason;
    };
    const Use uses[] = {
        {CleanupCategory::log, "Library/Logs", "out", 30, 524'288, 40,
         "Old diagnostic record. Apps and macOS do not need this file to run."},
        {CleanupCategory::crashReport, "Library/Logs/DiagnosticReports", "ips", 30, 524'288, 30,
         "Old crash report used only to diagnose a past problem."},
        {CleanupCategory::installer, "Downloads", "xip", 21, 5'242'880, 30,
         "Downloaded more than 21 days ago. Removing it does not uninstall the app."},
        {CleanupCategory::archive, "Downloads", "tbz2", 45, 26'214'400, 30,
         "Not changed for 45 days. It may be your only copy, so open it before deciding."},
        {CleanupCategory::interruptedDownload, "Downloads", "crdownload", 14, 5'242'880, 20,
         "An unfinished download that has not changed for at least 14 days."},
        {CleanupCategory::largeDownload, "Downloads", "mov", 90, 262'144'000, 30,
         "A large Downloads file not changed for 90 days. Only you can know whether it is still needed."},
    };
    for (const auto& use : uses) {
        ScanFixture made;
        const auto path = [&](const std::string& name) {
            return std::filesystem::path(use.folder) / (name + "." + use.extension);
        };
        for (std::size_t i = 0; i <= use.maximumCount; ++i)
            made.file(path("old " + std::to_string(i)), use.minimumSize, days(use.days) + std::chrono::nanoseconds(1));
        made.file(path("young"), use.minimumSize, days(use.days));
        made.file(path("small"), use.minimumSize - 131072, days(use.days) + std::chrono::nanoseconds(1));
        const auto report = scan(made.environment, made.workers, {});
        EXPECT_EQ(report.candidates.size(), use.maximumCount) << use.folder << use.extension;
        for (const auto& found : report.candidates) {
            EXPECT_EQ(found.category, use.category);
            EXPECT_EQ(found.reason, use.reason);
            EXPECT_TRUE(found.title.starts_with("old ")) << found.title;
        }
        EXPECT_EQ(report.states.at(use.category), CleanupScanState::limited) << use.extension;
    }
}

TEST_F(ScanReport, OldCachesAreOfferedButNotThoseOfOtherFinders) {
    for (const char* name : {"app", "young", "small", "Homebrew", "CocoaPods", "org.swift.swiftpm"}) {
        const auto folder = folderWithFile(std::filesystem::path("Library/Caches") / name, 4096, days(31));
        workers.metrics[folder] = {std::string(name) == "small" ? 26'214'399 : 26'214'400, now - days(31), true};
    }
    setAge("Library/Caches/young", days(30));
    const auto report = scan(environment, workers, {});
    ASSERT_THAT(namesOf(report.candidates), ElementsAre("app", "Homebrew", "CocoaPods", "org.swift.swiftpm"));
    EXPECT_EQ(report.candidates[0].category, CleanupCategory::cache);
    EXPECT_EQ(report.candidates[0].reason,
              "An app can normally recreate this. It has not changed for at least 30 days.");
    EXPECT_EQ(report.candidates[1].category, CleanupCategory::developerCache);
}

TEST_F(ScanReport, ACategoryThatIsLimitedButMissingSaysNotPresent) {
    directory("Library");
    EXPECT_EQ(scan(environment, workers, {}).states.at(CleanupCategory::log), CleanupScanState::notPresent);
}

TEST_F(ScanReport, AHomeWhosePlacesAllHangSaysSoEverywhere) {
    for (const auto& row : allCleanupCategories)
        for (const auto& place : approvedRoots(row.value, environment)) {
            std::filesystem::create_directories(place);
            workers.hung.insert(place);
            workers.metrics[place] = {};
        }
    const auto report = scan(environment, workers, {});
    EXPECT_THAT(report.candidates, IsEmpty());
    for (const auto& [category, state] : report.states)
        EXPECT_EQ(state, CleanupScanState::unavailable) << rawValue(category);
    for (const auto& [category, metric] : report.metrics)
        EXPECT_EQ(metric.occupied.isExact(), category == CleanupCategory::crashReport) << rawValue(category);
}

TEST_F(ScanReport, WhatWasCutShortIsALowerBoundAndWhatWasNotMeasuredIsNotOffered) {
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

TEST_F(ScanReport, WhatWasMeasuredAheadIsNotMeasuredAgain) {
    workers.measuresAhead = true;
    folderWithFile("Library/Caches/one", 30 * mebibyte, days(40));
    folderWithFile("Library/Caches/two", 30 * mebibyte, days(50));
    folderWithFile("Library/Caches/recent", 4096, days(1));
    const auto report = scan(environment, workers, {});
    EXPECT_EQ(namesOf(report.candidates), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(report.metrics.at(CleanupCategory::cache).occupied, CleanupByteAmount::exact(60 * mebibyte + 4096));
    const auto times = [&](const std::string& question) { return std::ranges::count(workers.asked, question); };
    EXPECT_EQ(times("measure in " + at("Library/Caches").native()), 1);
    for (const char* path : {"Library/Caches", "Library/Caches/one", "Library/Caches/two"})
        EXPECT_EQ(times("measure " + at(path).native()), 0) << path;
}

TEST_F(ScanReport, WhatCouldNotBeMeasuredAheadIsMeasuredByItself) {
    folderWithFile("Library/Caches/one", 30 * mebibyte, days(40));
    folderWithFile("Library/Caches/two", 30 * mebibyte, days(50));
    const auto report = scan(environment, workers, {});
    EXPECT_EQ(namesOf(report.candidates), (std::vector<std::string>{"one", "two"}));
    const auto times = [&](const std::string& question) { return std::ranges::count(workers.asked, question); };
    EXPECT_EQ(times("measure in " + at("Library/Caches").native()), 1);
    for (const char* path : {"Library/Caches", "Library/Caches/one", "Library/Caches/two"})
        EXPECT_EQ(times("measure " + at(path).native()), 1) << path;
}

TEST_F(ScanReport, EachFolderIsListedAndMeasuredOnceUnlessThatWasNotComplete) {
    folderWithFile(".npm/_cacache", 4096, days(1));
    const auto incomplete = folderWithFile(".gradle/caches", 4096, days(1));
    workers.metrics[incomplete] = {4096, now, false};
    directory("Downloads");
    const auto hung = directory("Library/Logs");
    workers.hung.insert(hung);
    const auto report = scan(environment, workers, {});
    const auto times = [&](const std::string& question) { return std::ranges::count(workers.asked, question); };
    EXPECT_EQ(times("measure " + at(".npm/_cacache").native()), 1);
    EXPECT_EQ(times("list " + at("Downloads").native()), 1);
    EXPECT_EQ(times("measure " + incomplete.native()), 2);
    EXPECT_EQ(times("list " + hung.native()), 2);
    EXPECT_EQ(report.metrics.at(CleanupCategory::developerCache).occupied, CleanupByteAmount::atLeast(8192));
}

} // namespace
} // namespace vantry::CleanupScanner
