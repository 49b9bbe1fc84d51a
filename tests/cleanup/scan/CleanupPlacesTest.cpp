#include "cleanup/scan/CleanupPlaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry::CleanupScanner {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const ScanEnvironment environment{.home = "/home/ada",
                                  .applications = "/Applications",
                                  .systemApplications = "/System/Applications",
                                  .workers = {},
                                  .now = {}};

std::vector<std::string> rootsOf(CleanupCategory category) {
    std::vector<std::string> texts;
    for (const auto& root : approvedRoots(category, environment))
        texts.push_back(root.native());
    return texts;
}

TEST(CleanupPlaces, OfEachCategoryAreItsRootsInOrder) {
    using Category = CleanupCategory;
    EXPECT_THAT(rootsOf(Category::cache), ElementsAre("/home/ada/Library/Caches"));
    EXPECT_THAT(rootsOf(Category::log), ElementsAre("/home/ada/Library/Logs"));
    EXPECT_THAT(rootsOf(Category::crashReport), ElementsAre("/home/ada/Library/Logs/DiagnosticReports"));
    for (const auto category :
         {Category::installer, Category::archive, Category::interruptedDownload, Category::largeDownload})
        EXPECT_THAT(rootsOf(category), ElementsAre("/home/ada/Downloads"));
    EXPECT_THAT(rootsOf(Category::macOSInstaller), ElementsAre("/Applications"));
    EXPECT_THAT(rootsOf(Category::orphan), ElementsAre("/home/ada/Library/Saved Application State"));
    EXPECT_THAT(rootsOf(Category::developerBuild), ElementsAre("/home/ada/Library/Developer/Xcode/DerivedData",
                                                               "/home/ada/Library/Developer/CoreSimulator/Caches"));
    EXPECT_THAT(rootsOf(Category::developerCache),
                ElementsAre("/home/ada/Library/Caches/Homebrew", "/home/ada/Library/Caches/CocoaPods",
                            "/home/ada/Library/Caches/org.swift.swiftpm", "/home/ada/.npm/_cacache",
                            "/home/ada/.gradle/caches"));
    EXPECT_THAT(rootsOf(Category::developerArchive),
                ElementsAre("/home/ada/Library/Developer/Xcode/Archives",
                            "/home/ada/Library/Developer/Xcode/iOS DeviceSupport"));
    EXPECT_THAT(rootsOf(Category::deviceBackup),
                ElementsAre("/home/ada/Library/Application Support/MobileSync/Backup"));
    EXPECT_THAT(rootsOf(Category::deviceSoftware), ElementsAre("/home/ada/Library/iTunes/iPhone Software Updates",
                                                               "/home/ada/Library/iTunes/iPad Software Updates",
                                                               "/home/ada/Library/iTunes/iPod Software Updates"));
}

TEST(CleanupPlaces, ExtensionsAndAgesAreThoseOfTheCategories) {
    using Category = CleanupCategory;
    using std::chrono::days;
    EXPECT_THAT(matchedExtensions(Category::log), ElementsAre("log", "txt", "out"));
    EXPECT_THAT(matchedExtensions(Category::crashReport), ElementsAre("crash", "ips", "diag", "spin", "hang"));
    EXPECT_THAT(matchedExtensions(Category::installer), ElementsAre("dmg", "pkg", "xip"));
    EXPECT_THAT(matchedExtensions(Category::archive),
                ElementsAre("zip", "7z", "rar", "tar", "gz", "bz2", "xz", "tgz", "tbz", "tbz2"));
    EXPECT_THAT(matchedExtensions(Category::interruptedDownload),
                ElementsAre("download", "crdownload", "part", "partial"));
    EXPECT_THAT(matchedExtensions(Category::deviceSoftware), ElementsAre("ipsw", "ipcc", "dmg"));
    for (const auto category :
         {Category::cache, Category::largeDownload, Category::macOSInstaller, Category::orphan,
          Category::developerBuild, Category::developerCache, Category::developerArchive, Category::deviceBackup})
        EXPECT_THAT(matchedExtensions(category), IsEmpty());
    EXPECT_EQ(minimumAge(Category::log), std::chrono::seconds(2'592'000));
    EXPECT_EQ(minimumAge(Category::crashReport), std::chrono::seconds(2'592'000));
    EXPECT_EQ(minimumAge(Category::installer), std::chrono::seconds(1'814'400));
    EXPECT_EQ(minimumAge(Category::interruptedDownload), std::chrono::seconds(1'209'600));
    EXPECT_EQ(minimumAge(Category::cache), days(30));
    EXPECT_EQ(minimumAge(Category::archive), days(45));
    EXPECT_EQ(minimumAge(Category::largeDownload), days(90));
    EXPECT_EQ(minimumAge(Category::developerArchive), days(180));
    EXPECT_EQ(minimumAge(Category::deviceSoftware), days(90));
}

TEST(CleanupPlaces, AnExtensionIsWhatFollowsTheLastDotInLowerCase) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.log", "log"}, {"a.LOG", "log"},     {"a.b.Gz", "gz"}, {"a", ""},          {".log", ""},         {"a.", ""},
        {"..", ""},       {"dir.app/file", ""}, {"a.É", "É"},     {"a.\xff", "\xff"}, {"/x/y.tar.xz", "xz"}};
    for (const auto& [path, extension] : cases)
        EXPECT_EQ(lowercaseExtension(path), extension) << path;
}

} // namespace
} // namespace vantry::CleanupScanner
