#include "cleanup/finding/DeveloperFinders.h"
#include "base/Format.h"

#include "tests/cleanup/finding/ScanFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::int64_t archiveFloor = 262'144'000;

class DeveloperData : public testing::Test, public ScanFixture {};
class MacOSInstallers : public testing::Test, public ScanFixture {};

TEST_F(DeveloperData, EveryPlaceHasItsTitleAndReasonInOrder) {
    for (const char* place :
         {"Library/Developer/Xcode/Archives/2019-05-01", "Library/Developer/Xcode/iOS DeviceSupport/12.0 (16A366)"}) {
        workers.metrics[folderWithFile(place, 4096, days(181))] = {archiveFloor, now - days(181), true};
    }
    for (const char* place :
         {"Library/Developer/Xcode/DerivedData", "Library/Developer/CoreSimulator/Caches", "Library/Caches/Homebrew",
          "Library/Caches/CocoaPods", "Library/Caches/org.swift.swiftpm", ".npm/_cacache", ".gradle/caches"})
        folderWithFile(place, 4096, days(0));
    struct Expected {
        const char* path;
        const char* title;
        CleanupCategory category;
        const char* reason;
        std::int64_t size;
    };
    const Expected expected[] = {
        {"Library/Developer/Xcode/Archives/2019-05-01", "2019-05-01", CleanupCategory::developerArchive,
         "Xcode archive group not modified for at least 180 days. Keep anything needed for symbolication or release "
         "export.",
         archiveFloor},
        {"Library/Developer/Xcode/iOS DeviceSupport/12.0 (16A366)", "12.0 (16A366)", CleanupCategory::developerArchive,
         "Device-support version not modified for at least 180 days. Xcode can restore it when that OS is used again.",
         archiveFloor},
        {"Library/Developer/Xcode/DerivedData", "Xcode Derived Data", CleanupCategory::developerBuild,
         "Xcode recreates Derived Data when a project is built.", 4096},
        {"Library/Developer/CoreSimulator/Caches", "Simulator Caches", CleanupCategory::developerBuild,
         "Simulator caches are recreated when needed.", 4096},
        {"Library/Caches/Homebrew", "Homebrew Cache", CleanupCategory::developerCache,
         "Homebrew downloads and rebuilds this cache when needed.", 4096},
        {"Library/Caches/CocoaPods", "CocoaPods Cache", CleanupCategory::developerCache,
         "CocoaPods downloads this cache again when needed.", 4096},
        {"Library/Caches/org.swift.swiftpm", "Swift Package Manager Cache", CleanupCategory::developerCache,
         "Swift Package Manager resolves this cache again when needed.", 4096},
        {".npm/_cacache", "npm Cache", CleanupCategory::developerCache,
         "npm verifies and downloads package cache content again when needed.", 4096},
        {".gradle/caches", "Gradle Cache", CleanupCategory::developerCache,
         "Gradle rebuilds and downloads cache content again when needed.", 4096},
    };
    const auto found = developerCandidates(context);
    ASSERT_EQ(found.size(), std::size(expected));
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].url, home() / expected[i].path);
        EXPECT_EQ(found[i].title, expected[i].title);
        EXPECT_EQ(found[i].category, expected[i].category);
        EXPECT_EQ(found[i].reason, expected[i].reason);
        EXPECT_EQ(found[i].size, expected[i].size);
        EXPECT_EQ(found[i].confidence, CleanupConfidence::review);
        EXPECT_FALSE(found[i].canMoveToTrash());
    }
    EXPECT_THAT(budget.limitedCategories, IsEmpty());
}

TEST_F(DeveloperData, AWholeFolderIsOfferedFromOneByteOnWhateverItsAge) {
    workers.metrics[directory(".npm/_cacache")] = {1, now, true};
    workers.metrics[directory(".gradle/caches")] = {0, std::nullopt, true};
    EXPECT_THAT(namesOf(developerCandidates(context)), ElementsAre("_cacache"));
}

TEST_F(DeveloperData, PlacesThatAreLinksOrFilesOrMissingAreNotMeasured) {
    folderWithFile("elsewhere", 4096, days(1));
    link(".npm/_cacache", home() / "elsewhere");
    file(".gradle/caches", 4096, days(1));
    EXPECT_THAT(developerCandidates(context), IsEmpty());
    for (const auto& question : workers.asked)
        EXPECT_FALSE(question.starts_with("measure")) << question;
}

TEST_F(DeveloperData, AnIncompleteSizeIsOfferedAndLimitsTheCategory) {
    workers.metrics[directory(".npm/_cacache")] = {4096, now, false};
    workers.metrics[directory("Library/Developer/Xcode/DerivedData")] = {0, std::nullopt, false};
    EXPECT_THAT(namesOf(developerCandidates(context)), ElementsAre("_cacache"));
    EXPECT_TRUE(budget.limitedCategories.contains(CleanupCategory::developerCache));
    EXPECT_TRUE(budget.limitedCategories.contains(CleanupCategory::developerBuild));
}

TEST_F(DeveloperData, WhenTimeIsUpEveryDeveloperCategoryIsLimited) {
    folderWithFile(".npm/_cacache", 4096, days(1));
    budget.deadline = deadlineIn(std::chrono::seconds(-1));
    EXPECT_THAT(developerCandidates(context), IsEmpty());
    EXPECT_THAT(budget.limitedCategories, ElementsAre(CleanupCategory::developerBuild, CleanupCategory::developerCache,
                                                      CleanupCategory::developerArchive));
    EXPECT_THAT(workers.asked, IsEmpty());
}

TEST_F(MacOSInstallers, AreRecognizedByNameAndExtension) {
    for (const char* name : {"Install macOS Sonoma.app", "Install macOS.APP", "Install macOSx.app"})
        EXPECT_TRUE(isMacOSInstaller(name)) << name;
    for (const char* name : {"install macOS Sonoma.app", "Install macOS Sonoma", "Install OS X.app", "Safari.app",
                             "My Install macOS Sonoma.app", "Install macOS Sonoma.pkg"})
        EXPECT_FALSE(isMacOSInstaller(name)) << name;
}

TEST_F(MacOSInstallers, AreOfferedWhateverTheirSizeAndAge) {
    folderWithFile(applications() / "Install macOS Sonoma.app", 8192, days(0));
    directory(applications() / "Install macOS Ventura.app");
    folderWithFile(applications() / "Safari.app", 8192, days(900));
    const auto found = macOSInstallers(context);
    ASSERT_THAT(namesOf(found), ElementsAre("Install macOS Sonoma.app", "Install macOS Ventura.app"));
    EXPECT_EQ(found[0].title, "Install macOS Sonoma");
    EXPECT_EQ(found[0].size, 8192);
    EXPECT_EQ(found[0].category, CleanupCategory::macOSInstaller);
    EXPECT_EQ(found[0].confidence, CleanupConfidence::review);
    EXPECT_EQ(found[0].reason,
              "Full macOS installer app. Keep it only if you plan to upgrade or create install media.");
}

TEST_F(MacOSInstallers, AreNeitherLinksNorFiles) {
    folderWithFile("elsewhere", 4096, days(1));
    link(applications() / "Install macOS Sonoma.app", home() / "elsewhere");
    file(applications() / "Install macOS Ventura.app", 4096, days(1));
    EXPECT_THAT(macOSInstallers(context), IsEmpty());
}

TEST_F(MacOSInstallers, AListingOrMeasurementThatIsNotCompleteLimitsTheCategory) {
    const auto app = directory(applications() / "Install macOS Sonoma.app");
    workers.metrics[app] = {4096, now, false};
    EXPECT_EQ(macOSInstallers(context).size(), 1U);
    EXPECT_THAT(budget.limitedCategories, ElementsAre(CleanupCategory::macOSInstaller));
    budget.limitedCategories.clear();
    workers.hung.insert(applications());
    EXPECT_THAT(macOSInstallers(context), IsEmpty());
    EXPECT_THAT(budget.limitedCategories, ElementsAre(CleanupCategory::macOSInstaller));
    budget.limitedCategories.clear();
    workers.hung.clear();
    workers.afterListing = [this](const auto&) { budget.deadline = deadlineIn(std::chrono::seconds(-1)); };
    EXPECT_THAT(macOSInstallers(context), IsEmpty()) << "the time was up after the listing";
    EXPECT_THAT(budget.limitedCategories, ElementsAre(CleanupCategory::macOSInstaller));
    const auto listed = workers.timesAsked("list " + applications().native());
    EXPECT_THAT(macOSInstallers(context), IsEmpty()) << "the time was up before it";
    EXPECT_EQ(workers.timesAsked("list " + applications().native()), listed);
    budget.limitedCategories.clear();
    budget.deadline = deadlineIn(std::chrono::seconds(60));
    std::filesystem::rename(app, applications() / "Safari.app");
    EXPECT_THAT(macOSInstallers(context), IsEmpty()) << "the time was up before it was known what it is";
    EXPECT_THAT(budget.limitedCategories, ElementsAre(CleanupCategory::macOSInstaller));
}

} // namespace
} // namespace vantry::CleanupScanner
