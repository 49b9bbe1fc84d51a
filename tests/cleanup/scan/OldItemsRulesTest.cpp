#include "cleanup/scan/OldItemsRules.h"

#include "cleanup/scan/CleanupPlaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;
using TextList = std::vector<std::string>;

const SystemTime now = std::chrono::sys_days(std::chrono::year(2026) / 6 / 1);
const ScanEnvironment adasEnvironment{.home = "/home/ada",
                                      .applications = "/Applications",
                                      .systemApplications = "/System/Applications",
                                      .workers = {},
                                      .now = [] { return now; }};

std::vector<OldItemsRule> allRules() {
    std::vector<OldItemsRule> rules{oldCachesRule(adasEnvironment)};
    for (const auto& more :
         {oldFilesRules(adasEnvironment), developerArchiveRules(adasEnvironment), deviceSoftwareRules(adasEnvironment)})
        rules.insert(rules.end(), more.begin(), more.end());
    return rules;
}

TextList texts(std::span<const std::string_view> views) { return {views.begin(), views.end()}; }

struct Expected {
    const char* folder;
    CleanupCategory category;
    int days;
    std::int64_t minimumSize;
    std::size_t maximumCount;
    TextList extensions;
    const char* reason;
};

const std::vector<Expected>& expectedRules() {
    using Category = CleanupCategory;
    static const TextList updates{"ipsw", "ipcc", "dmg"};
    static const char* const updateReason = "Downloaded Apple-device update file not modified for at least 90 days.";
    static const std::vector<Expected> expected{
        {"Library/Caches",
         Category::cache,
         30,
         26'214'400,
         35,
         {},
         "An app can normally recreate this. It has not changed for at least 30 days."},
        {"Library/Logs",
         Category::log,
         30,
         524'288,
         40,
         {"log", "txt", "out"},
         "Old diagnostic record. Apps and macOS do not need this file to run."},
        {"Library/Logs/DiagnosticReports",
         Category::crashReport,
         30,
         524'288,
         30,
         {"crash", "ips", "diag", "spin", "hang"},
         "Old crash report used only to diagnose a past problem."},
        {"Downloads",
         Category::installer,
         21,
         5'242'880,
         30,
         {"dmg", "pkg", "xip"},
         "Downloaded more than 21 days ago. Removing it does not uninstall the app."},
        {"Downloads",
         Category::archive,
         45,
         26'214'400,
         30,
         {"zip", "7z", "rar", "tar", "gz", "bz2", "xz", "tgz", "tbz", "tbz2"},
         "Not changed for 45 days. It may be your only copy, so open it before deciding."},
        {"Downloads",
         Category::interruptedDownload,
         14,
         5'242'880,
         20,
         {"download", "crdownload", "part", "partial"},
         "An unfinished download that has not changed for at least 14 days."},
        {"Downloads",
         Category::largeDownload,
         90,
         262'144'000,
         30,
         {},
         "A large Downloads file not changed for 90 days. Only you can know whether it is still needed."},
        {"Library/Developer/Xcode/Archives",
         Category::developerArchive,
         180,
         262'144'000,
         20,
         {},
         "Xcode archive group not modified for at least 180 days. Keep anything needed for symbolication or release "
         "export."},
        {"Library/Developer/Xcode/iOS DeviceSupport",
         Category::developerArchive,
         180,
         262'144'000,
         20,
         {},
         "Device-support version not modified for at least 180 days. Xcode can restore it when that OS is used again."},
        {"Library/iTunes/iPhone Software Updates", Category::deviceSoftware, 90, 262'144'000, 10, updates,
         updateReason},
        {"Library/iTunes/iPad Software Updates", Category::deviceSoftware, 90, 262'144'000, 10, updates, updateReason},
        {"Library/iTunes/iPod Software Updates", Category::deviceSoftware, 90, 262'144'000, 10, updates, updateReason},
    };
    return expected;
}

TEST(OldItemsRules, AreTheseInThisOrder) {
    const auto rules = allRules();
    const auto& expected = expectedRules();
    ASSERT_EQ(rules.size(), expected.size());
    for (std::size_t i = 0; i < rules.size(); ++i) {
        SCOPED_TRACE(expected[i].folder);
        EXPECT_EQ(rules[i].folder, std::filesystem::path("/home/ada") / expected[i].folder);
        EXPECT_EQ(rules[i].category, expected[i].category);
        EXPECT_EQ(rules[i].olderThan, days(expected[i].days));
        EXPECT_EQ(rules[i].minimumSize, expected[i].minimumSize);
        EXPECT_EQ(rules[i].maximumCount, expected[i].maximumCount);
        EXPECT_EQ(texts(rules[i].extensions), expected[i].extensions);
        EXPECT_EQ(rules[i].reason, expected[i].reason);
        EXPECT_EQ(texts(rules[i].excludedNames),
                  i == 0 ? (TextList{"Homebrew", "CocoaPods", "org.swift.swiftpm"}) : TextList());
    }
}

TEST(OldItemsRules, OfferFromTheByteAndTheNanosecondOnThatTheyName) {
    for (const auto& rule : allRules()) {
        SCOPED_TRACE(rule.folder);
        const auto cutoff = cutoffDate(now, rule.olderThan);
        struct Case {
            std::int64_t bytes;
            nanoseconds older;
            bool isOffered;
        };
        for (const auto& [bytes, older, isOffered] :
             {Case{0, nanoseconds(1), true}, Case{-1, nanoseconds(1), false}, Case{1, nanoseconds(1), true},
              Case{0, nanoseconds(0), false}, Case{0, nanoseconds(-1), false}}) {
            const auto date = cutoff - older;
            const auto size = rule.minimumSize + bytes;
            EXPECT_EQ(isOldRegularFile(rule, {ItemFacts::Kind::regularFile, date, size}, cutoff), isOffered)
                << bytes << " " << older.count();
            EXPECT_EQ(isOldInside(rule, {size, date, true}, cutoff), isOffered) << bytes << " " << older.count();
        }
    }
}

TEST(OldItemsRules, LargeDownloadsLeaveOutWhatTheOtherDownloadFindersMatch) {
    const auto rule = largeDownloadsRule(adasEnvironment);
    for (const auto category :
         {CleanupCategory::installer, CleanupCategory::archive, CleanupCategory::interruptedDownload})
        for (const auto extension : matchedExtensions(category))
            EXPECT_FALSE(matchesExtensions(rule, "file." + std::string(extension))) << extension;
    for (const char* name : {"film.mov", "disk", "old.log", "a.iso"})
        EXPECT_TRUE(matchesExtensions(rule, name)) << name;
}

} // namespace
} // namespace vantry::CleanupScanner
