#include "base/Format.h"
#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/gate/CleanupValidation.h"
#include "cleanup/model/CleanupPlaces.h"
#include "platform/ChildProcess.h"
#include "tests/cleanup/finding/ScanFixture.h"
#include "tests/support/BoundSocket.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordedPolls.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/sysmacros.h>
#include <thread>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using testing::IsEmpty;

/// Everything about the items of a folder that a scan must not change: all but the access times.
std::map<std::string, std::string> pictureOf(const std::filesystem::path& folder) {
    std::map<std::string, std::string> picture;
    std::vector<std::filesystem::path> items;
    if (std::filesystem::exists(folder)) {
        items.push_back(folder);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            items.push_back(entry.path());
    }
    for (const auto& item : items) {
        const auto said = factsOf(item);
        picture[item.native()] = formatted("{} {} {} {} {} {} {} {}.{} {}.{}", said.st_ino, said.st_mode, said.st_size,
                                           said.st_blocks, said.st_uid, said.st_gid, said.st_nlink, said.st_mtim.tv_sec,
                                           said.st_mtim.tv_nsec, said.st_ctim.tv_sec, said.st_ctim.tv_nsec);
    }
    return picture;
}

/// Scans made-up homes with real workers.
class MadeUpHome : public testing::Test, public ScanFixture {
protected:
    MadeUpHome() { environment.workers = {OMBREL_EXECUTABLE, directory(home().parent_path() / "temporary")}; }
    CleanupScanReport scanned(const std::vector<std::string>& running = {}) {
        const auto before = pictureOf(home());
        const auto beforeOfOthers = pictureOf(applications());
        auto report = scan(environment, running);
        EXPECT_EQ(pictureOf(home()), before);
        EXPECT_EQ(pictureOf(applications()), beforeOfOthers);
        return report;
    }
    [[nodiscard]] static std::map<CleanupCategory, std::vector<std::string>>
    byCategory(const CleanupScanReport& report) {
        std::map<CleanupCategory, std::vector<std::string>> names;
        for (const auto& candidate : report.candidates)
            names[candidate.category].push_back(candidate.url.filename().native());
        return names;
    }
    void list(const std::filesystem::path& path, const std::string& key, const std::string& value) {
        const auto file = at(path);
        std::filesystem::create_directories(file.parent_path());
        writeFile(file, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>" + key +
                            "</key><string>" + value + "</string></dict></plist>\n");
    }
};

TEST_F(MadeUpHome, WithEveryCategoryIsReportedCompletelyAndNotChanged) {
    constexpr std::int64_t large = 262'144'000;
    folderWithFile("Library/Caches/com.example.painter", 26'214'400, days(31));
    file("Library/Logs/old.log", 524'288, days(31));
    file("Library/Logs/DiagnosticReports/old.ips", 524'288, days(31));
    file("Downloads/Painter.dmg", 5'242'880, days(22));
    file("Downloads/photos.zip", 26'214'400, days(46));
    file("Downloads/film.part", 5'242'880, days(15));
    file("Downloads/film.mov", large, days(91));
    folderWithFile(applications() / "Install macOS Sonoma.app", 8192, days(1));
    list(applications() / "Painter.app/Contents/Info.plist", "CFBundleIdentifier", "com.example.painter");
    for (const char* identifier : {"painter", "gone", "runs"})
        folderWithFile(std::string("Library/Saved Application State/com.example.") + identifier + ".savedState", 4096,
                       days(1));
    folderWithFile("Library/Developer/Xcode/DerivedData", 4096, days(1));
    folderWithFile(".npm/_cacache", 4096, days(1));
    folderWithFile("Library/Developer/Xcode/Archives/2019-05-01", large, days(181));
    const std::filesystem::path backups = "Library/Application Support/MobileSync/Backup";
    for (const char* name : {"first", "second"}) {
        list(backups / name / "Info.plist", "GUID", "00008030-1");
        setAge(backups / name, days(name[0] == 'f' ? 100 : 1));
    }
    file("Library/iTunes/iPhone Software Updates/old.ipsw", large, days(91));

    const auto report = scanned({"com.example.runs"});
    const std::map<CleanupCategory, std::vector<std::string>> expected{
        {CleanupCategory::cache, {"com.example.painter"}},
        {CleanupCategory::log, {"old.log"}},
        {CleanupCategory::crashReport, {"old.ips"}},
        {CleanupCategory::installer, {"Painter.dmg"}},
        {CleanupCategory::archive, {"photos.zip"}},
        {CleanupCategory::interruptedDownload, {"film.part"}},
        {CleanupCategory::largeDownload, {"film.mov"}},
        {CleanupCategory::macOSInstaller, {"Install macOS Sonoma.app"}},
        {CleanupCategory::orphan, {"com.example.gone.savedState"}},
        {CleanupCategory::developerBuild, {"DerivedData"}},
        {CleanupCategory::developerCache, {"_cacache"}},
        {CleanupCategory::developerArchive, {"2019-05-01"}},
        {CleanupCategory::deviceBackup, {"first"}},
        {CleanupCategory::deviceSoftware, {"old.ipsw"}},
    };
    EXPECT_EQ(byCategory(report), expected);
    for (const auto& row : allCleanupCategories) {
        EXPECT_TRUE(report.metrics.at(row.value).occupied.isExact()) << row.rawValue;
        EXPECT_EQ(report.metrics.at(row.value).reviewableItemCount, 1) << row.rawValue;
        // Two categories have a place that is missing.
        const bool lacksAPlace =
            row.value == CleanupCategory::developerArchive || row.value == CleanupCategory::deviceSoftware;
        EXPECT_EQ(report.states.at(row.value), lacksAPlace ? CleanupScanState::limited : CleanupScanState::checked)
            << row.rawValue;
    }
    EXPECT_TRUE(std::filesystem::is_empty(environment.workers.temporaryFolder));
}

TEST_F(MadeUpHome, ThatIsEmptyIsScannedWithoutAWorker) {
    RecordedPolls::forget();
    EXPECT_THAT(scanned().candidates, IsEmpty());
    EXPECT_EQ(RecordedPolls::count(), 0) << "the end of each worker would be waited for";
}

TEST_F(MadeUpHome, WithLinksInThePlacesOfItsItemsOffersNone) {
    file("Downloads/old.dmg", 26'214'400, days(90));
    folderWithFile("Library/Caches/app", 26'214'400, days(90));
    file("Library/Logs/old.log", 524'288, days(90));
    file("Library/Logs/DiagnosticReports/old.ips", 524'288, days(90));
    const std::filesystem::path backups = "Library/Application Support/MobileSync/Backup";
    for (const char* name : {"first", "second"}) {
        list(backups / name / "Info.plist", "GUID", "00008030-1");
        setAge(backups / name, days(name[0] == 'f' ? 100 : 90));
    }
    folderWithFile("Library/Developer/Xcode/DerivedData", 4096, days(90));
    folderWithFile(".npm/_cacache", 4096, days(90));
    folderWithFile("Library/Saved Application State/com.example.gone.savedState", 4096, days(90));
    EXPECT_THAT(namesOf(scanned().candidates),
                testing::UnorderedElementsAre("old.dmg", "app", "old.log", "old.ips", "first", "DerivedData",
                                              "_cacache", "com.example.gone.savedState"));

    // The same items behind equally old links.
    const auto elsewhere = directory(home().parent_path() / "elsewhere");
    for (const char* place :
         {"Downloads", "Library/Caches/app", "Library/Logs/old.log", "Library/Logs/DiagnosticReports",
          "Library/Application Support/MobileSync/Backup", "Library/Developer/Xcode/DerivedData", ".npm/_cacache",
          "Library/Saved Application State"}) {
        const auto target = elsewhere / std::filesystem::path(place).filename();
        std::filesystem::rename(at(place), target);
        link(place, target);
        setAge(place, days(100));
    }
    link("Library/Logs/loop", home() / "Library/Logs/loop");
    const auto report = scanned();
    EXPECT_THAT(report.candidates, IsEmpty());
    EXPECT_EQ(report.states.at(CleanupCategory::installer), CleanupScanState::unavailable);
    EXPECT_EQ(report.states.at(CleanupCategory::deviceBackup), CleanupScanState::relocated);
    EXPECT_EQ(report.states.at(CleanupCategory::cache), CleanupScanState::checked);
    EXPECT_EQ(report.metrics.at(CleanupCategory::cache).occupied, CleanupByteAmount::exact(0));
    EXPECT_EQ(report.metrics.at(CleanupCategory::deviceBackup).occupied, CleanupByteAmount::unavailable());
}

TEST_F(MadeUpHome, BelowALinkOffersNothingThatTheGateRefuses) {
    for (const char* linked : {"Library", "Library/Logs"}) {
        ScanFixture made;
        made.environment.workers = environment.workers;
        made.file("Library/Logs/old.log", 524'288, days(90));
        made.file("Library/Logs/DiagnosticReports/old.ips", 524'288, days(90));
        made.file("Downloads/old.dmg", 26'214'400, days(90));
        made.folderWithFile("Library/Caches/app", 26'214'400, days(90));
        const auto before = scan(made.environment, {});
        ASSERT_THAT(namesOf(before.candidates), testing::UnorderedElementsAre("old.log", "old.ips", "old.dmg", "app"));
        std::filesystem::rename(made.at(linked), made.at("elsewhere"));
        made.link(linked, made.at("elsewhere"));
        const auto report = scan(made.environment, {});
        EXPECT_THAT(namesOf(report.candidates), testing::UnorderedElementsAre("old.dmg", "app")) << linked;
        for (const auto& candidate : report.candidates)
            if (candidate.canMoveToTrash()) {
                EXPECT_EQ(validationFailure(candidate, made.environment.places, made.environment.now()), std::nullopt)
                    << candidate.url;
            }
        // A link in place of a folder is not listed. A link above a folder does not matter.
        EXPECT_EQ(report.states.at(CleanupCategory::log),
                  std::string_view(linked) == "Library" ? CleanupScanState::checked : CleanupScanState::unavailable);
        EXPECT_EQ(report.states.at(CleanupCategory::crashReport), CleanupScanState::checked) << linked;
    }
}

TEST_F(MadeUpHome, WithSocketsFifosDevicesAndOddNamesIsScannedCompletely) {
    const auto logs = directory("Library/Logs");
    ASSERT_EQ(mkfifo((logs / "fifo.log").c_str(), 0600), 0);
    setAge("Library/Logs/fifo.log", days(90));
    if (mknod((logs / "device.log").c_str(), S_IFCHR | 0600, makedev(1, 5)) == 0) // endless zeros; only root may
        setAge("Library/Logs/device.log", days(90));
    makeSocket(logs / "s.log");
    setAge(logs / "s.log", days(90));
    const std::vector<std::string> names{"line\nbreak.log", "quote\"\\.log", "\xff\xfe.log", " .log",
                                         std::string(251, 'x') + ".log"};
    for (const auto& odd : names)
        file("Library/Logs/" + odd, 524'288, days(90));
    const auto report = scanned();
    EXPECT_THAT(namesOf(report.candidates), testing::UnorderedElementsAreArray(names));
    EXPECT_EQ(report.states.at(CleanupCategory::log), CleanupScanState::checked);
}

TEST_F(MadeUpHome, IsScannedTheSameWithExtremeDates) {
    struct Case {
        const char* name;
        std::int64_t seconds;
        bool isOld;
    };
    const Case cases[] = {{"1901.log", -2'147'483'648, true},
                          {"1969.log", -1, true},
                          {"1970.log", 0, true},
                          {"2106.log", 4'294'967'297, false},
                          {"2400.log", 13'569'465'600, false}};
    std::vector<std::string> old;
    for (const auto& [name, seconds, isOld] : cases) {
        const auto path = file(std::string("Library/Logs/") + name, 524'288, {});
        const timespec times[2] = {{seconds, 1}, {seconds, 1}}; // more than SystemTime can hold
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        if (isOld)
            old.emplace_back(name);
    }
    EXPECT_THAT(namesOf(scanned().candidates), testing::UnorderedElementsAreArray(old));
    const auto usual = now;
    now = usual - days(3650);
    EXPECT_THAT(namesOf(scanned().candidates), testing::UnorderedElementsAreArray(old));
    now = usual + days(3650);
    EXPECT_THAT(namesOf(scanned().candidates), testing::UnorderedElementsAreArray(old));
}

TEST_F(MadeUpHome, WithSparseAndEmptyFilesCountsWhatTheyOccupy) {
    const auto path = file("Downloads/sparse.dmg", 0, days(90));
    std::filesystem::resize_file(path, 1'000'000'000);
    setAge(path, days(90));
    const auto report = scanned();
    EXPECT_THAT(report.candidates, IsEmpty());
    EXPECT_EQ(report.metrics.at(CleanupCategory::installer).occupied, CleanupByteAmount::exact(0));
}

TEST_F(MadeUpHome, OfAnOrdinaryUserReportsUnreadableFolders) {
    file("Downloads/old.dmg", 5'242'880, days(90));
    file("Library/Logs/old.log", 524'288, days(90));
    directory("Library/Caches/closed");
    std::filesystem::permissions(home().parent_path(), std::filesystem::perms::all);
    std::filesystem::permissions(environment.workers.temporaryFolder, std::filesystem::perms::all);
    std::filesystem::permissions(at("Downloads"), std::filesystem::perms::none);
    std::filesystem::permissions(at("Library/Logs/old.log"), std::filesystem::perms::none);
    std::filesystem::permissions(at("Library/Caches/closed"), std::filesystem::perms::none);
    const std::string said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no other user";
        const auto report = scan(environment, {});
        return formatted("{}, {}, {}", title(report.states.at(CleanupCategory::installer)),
                         testing::PrintToString(namesOf(report.candidates)),
                         title(report.states.at(CleanupCategory::cache)));
    });
    if (said == "no other user")
        GTEST_SKIP() << "has to become another user";
    EXPECT_EQ(said, "Folder Access Needed, { \"old.log\" }, Checked");
}

TEST_F(MadeUpHome, FilesMayVanishDuringAScan) {
    std::atomic<bool> done = false;
    file("Library/Logs/stays.log", 8 * mebibyte, days(90)); // the largest, so never cut
    std::thread vanisher([&] {
        for (int i = 0; !done; ++i) {
            const auto path = file("Library/Logs/" + std::to_string(i % 50) + ".log", 524'288, days(90));
            std::filesystem::remove(path);
        }
    });
    for (int i = 0; i < 5; ++i)
        EXPECT_THAT(namesOf(scan(environment, {}).candidates), testing::Contains("stays.log"));
    done = true;
    vanisher.join();
}

} // namespace
} // namespace vantry::CleanupScanner
