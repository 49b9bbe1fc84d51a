#include "cleanup/finding/CleanupScanner.h"
#include "cleanup/gate/SafePaths.h"
#include "tests/cleanup/finding/NaiveScan.h"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;

#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
constexpr int usualNumberOfHomes = 300;
#else
constexpr int usualNumberOfHomes = 1000;
#endif

// OMBREL_RANDOM_HOMES=5000 for a thorough look.
int numberOfHomes() {
    const char* wanted = std::getenv("OMBREL_RANDOM_HOMES");
    return wanted ? std::max(std::atoi(wanted), 1) : usualNumberOfHomes;
}

/// Files to make hard links to. Creating large files takes most of the time, and a scan tells files by their names.
class FilePool {
public:
    std::filesystem::path file(std::int64_t size, nanoseconds age) {
        const auto name = std::to_string(size) + " " + std::to_string(age.count());
        return std::filesystem::exists(made_.at(name)) ? made_.at(name) : made_.file(name, size, age);
    }

private:
    ScanFixture made_;
};

/// Makes homes whose dates and sizes lie close to every threshold.
class HomeMaker {
public:
    HomeMaker(ScanFixture& made, FilePool& pool, unsigned seed) : made_(made), pool_(pool), random_(seed) {}

    void make() {
        if (chance(8))
            linkAbove(chance(50) ? "Library" : "Library/Logs");
        if (chance(90))
            std::filesystem::create_directories(made_.applications());
        fill("Downloads", 12, {"dmg", "pkg", "zip", "tar.gz", "part", "mov", "PDF", "xip", "crdownload", ""},
             {5242880, 26214400, 262144000});
        fill("Library/Logs", 6, {"log", "txt", "out", "LOG", "gz"}, {524288});
        fill("Library/Logs/DiagnosticReports", 5, {"crash", "ips", "diag", "SPIN", "log"}, {524288});
        fill("Library/iTunes/iPhone Software Updates", 3, {"ipsw", "dmg", "zip"}, {262144000});
        fill("Library/iTunes/iPod Software Updates", 2, {"ipcc", "ipsw"}, {262144000});
        folders("Library/Caches", 4, {"app", "tool", "Homebrew", "CocoaPods", "org.swift.swiftpm"}, 26214400);
        folders("Library/Developer/Xcode/Archives", 3, {"2020", "2021"}, 262144000);
        folders("Library/Developer/Xcode/iOS DeviceSupport", 2, {"12.0", "13.0"}, 262144000);
        for (const char* place : {"Library/Developer/Xcode/DerivedData", "Library/Developer/CoreSimulator/Caches",
                                  ".npm/_cacache", ".gradle/caches"})
            if (chance(40))
                folder(place, 8192);
        for (const char* name : {"Install macOS Sonoma.app", "Install macOS.APP", "Safari.app"})
            if (chance(25))
                folder(made_.applications() / name, 8192);
        applications();
        backups();
        cutMeasurements();
    }

private:
    bool chance(int percent) { return number(0, 99) < percent; }
    std::int64_t number(std::int64_t least, std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(least, most)(random_);
    }
    template <class Some>
    auto oneOf(const Some& some) {
        return some[static_cast<std::size_t>(number(0, static_cast<std::int64_t>(std::size(some)) - 1))];
    }
    nanoseconds age(bool large = false) {
        static constexpr int limits[] = {14, 21, 30, 45, 90, 180};
        static constexpr int limitsOfLargeFiles[] = {90, 180};
        return nanoseconds(days(large ? oneOf(limitsOfLargeFiles) : oneOf(limits))) + nanoseconds(number(-1, 1));
    }
    std::filesystem::path file(const std::filesystem::path& path, const std::vector<std::int64_t>& limits) {
        const auto limit = oneOf(limits);
        const bool large = limit > 100 * mebibyte;
        const auto size = chance(15) ? 4096 : large ? limit : limit - number(0, 1) * 65536;
        std::filesystem::create_directories(made_.at(path).parent_path());
        std::filesystem::remove(made_.at(path));
        std::filesystem::create_hard_link(pool_.file(std::max<std::int64_t>(size, 0), age(large)), made_.at(path));
        return made_.at(path);
    }
    // Sometimes puts something else in place of a file or folder.
    bool somethingElse(const std::filesystem::path& path) {
        if (std::filesystem::exists(std::filesystem::symlink_status(made_.at(path))))
            return true;
        if (!chance(6))
            return false;
        if (chance(50))
            made_.link(path, chance(50) ? made_.directory("Elsewhere") : made_.home() / "nowhere");
        else
            file(path, {8192});
        return true;
    }
    // Makes the folder of a place. Sometimes it is missing or a link.
    bool place(const std::filesystem::path& path) {
        std::error_code blocked; // by a file in the place of a folder on the way
        std::filesystem::create_directories(made_.at(path).parent_path(), blocked);
        if (blocked || chance(25) || somethingElse(path))
            return std::filesystem::is_directory(std::filesystem::symlink_status(made_.at(path)));
        made_.directory(path);
        return true;
    }
    void fill(const std::filesystem::path& folder, int most, const std::vector<const char*>& extensions,
              const std::vector<std::int64_t>& limits) {
        if (!place(folder))
            return;
        for (std::int64_t left = number(0, most); left > 0; --left) {
            const auto path =
                folder / ((chance(5) ? "." : "") + std::to_string(number(0, 30)) + "." + oneOf(extensions));
            if (!somethingElse(path))
                file(path, limits);
        }
    }
    void folder(const std::filesystem::path& path, std::int64_t limit) {
        if (somethingElse(path))
            return;
        made_.directory(path);
        for (std::int64_t left = number(0, 3); left > 0; --left)
            file(path / (chance(30) ? "inside" : ".") / std::to_string(number(0, 9)), {limit});
        made_.setAge(path, age());
    }
    void folders(const std::filesystem::path& root, int most, const std::vector<const char*>& names,
                 std::int64_t limit) {
        if (place(root))
            for (std::int64_t left = number(0, most); left > 0; --left)
                folder(root / oneOf(names), limit);
    }
    void applications() {
        for (const char* identifier : {"com.example.a", "com.example.b", "COM.example.c"}) {
            if (chance(60) && std::filesystem::is_directory(made_.applications()))
                application(identifier);
            if (chance(70))
                folder(std::filesystem::path("Library/Saved Application State") /
                           (std::string(identifier) + (chance(90) ? ".savedState" : ".other")),
                       8192);
        }
    }
    // Moves a folder above places away and links to it.
    void linkAbove(const std::filesystem::path& path) {
        made_.directory("Moved");
        made_.link(path, made_.home() / "Moved");
    }
    // Cuts the measurement of some folders short.
    void cutMeasurements() {
        static const std::filesystem::path places[] = {"Library/Caches/app",
                                                       "Library/Caches/Homebrew",
                                                       "Library/Developer/Xcode/Archives/2020",
                                                       "Library/Developer/Xcode/DerivedData",
                                                       ".npm/_cacache",
                                                       "Library/Saved Application State",
                                                       "Library/Saved Application State/com.example.a.savedState",
                                                       "Library/Logs"};
        const auto cut = [&](const std::filesystem::path& path) {
            if (chance(80) || !std::filesystem::is_directory(std::filesystem::symlink_status(path)))
                return;
            static constexpr std::int64_t sizes[] = {0, 4096, 262144000};
            made_.workers.metrics[path] = {oneOf(sizes), chance(50) ? std::optional(made_.now - age()) : std::nullopt,
                                           chance(20)};
        };
        for (const auto& place : places)
            cut(made_.at(place));
        cut(made_.applications() / "Install macOS Sonoma.app");
        for (int i = 0; i < 10; ++i)
            cut(made_.at("Library/Application Support/MobileSync/Backup/12345678901234567890-" + std::to_string(i)));
    }
    // Puts an application anywhere in the folders of applications, perhaps in another one or behind a link.
    void application(const std::string& identifier) {
        static const std::filesystem::path folders[] = {"",
                                                        "",
                                                        "Utilities/Vendor 2.0/Suite",
                                                        ".hidden",
                                                        "X.app/Contents/Developer/Applications",
                                                        "X.app/Contents/Applications",
                                                        "X.app/Contents/Resources",
                                                        "Y/X.app/Contents/Library/LoginItems"};
        const auto root = chance(80) ? made_.applications() : made_.home() / "Applications";
        const auto folder = root / oneOf(folders);
        const auto information = folder / (identifier + ".app") / "Contents/Info.plist";
        if (chance(80))
            made_.information(information, identifier);
        else
            file(information, {8192});
        if (!chance(25))
            return;
        static const std::filesystem::path targets[] = {"../Resources/" + identifier + ".app", "../../nowhere",
                                                        "../../.."};
        const auto linkPath = chance(70) ? root / "X.app/Contents/PlugIns/Linked.app" : root / "Linked";
        std::error_code exists;
        std::filesystem::create_directories(linkPath.parent_path());
        std::filesystem::create_symlink(oneOf(targets), linkPath, exists);
    }
    void backups() {
        const std::filesystem::path root = "Library/Application Support/MobileSync/Backup";
        if (!place(root))
            return;
        for (std::int64_t left = number(0, 5); left > 0; --left) {
            const auto path =
                root / (std::string(chance(50) ? "12345678901234567890-" : "short-") + std::to_string(number(0, 9)));
            folder(path, 8192);
            if (chance(50))
                made_.workers.lists[made_.at(path) / "Info.plist"] = {
                    {chance(50) ? "GUID" : "Unique Identifier", chance(80) ? "device" : ""}};
        }
    }

    ScanFixture& made_;
    FilePool& pool_;
    std::mt19937 random_;
};

std::string amountText(const CleanupByteAmount& amount) {
    return !amount.knownBytes() ? "?" : (amount.isExact() ? "=" : ">") + std::to_string(*amount.knownBytes());
}

TEST(RandomHomes, AreScannedAsByASecondImplementation) {
    FilePool pool;
    std::map<CleanupCategory, int> found;
    int lowerBounds = 0;
    for (int seed = 0; seed < numberOfHomes(); ++seed) {
        ScanFixture made;
        HomeMaker(made, pool, static_cast<unsigned>(seed)).make();
        made.workers.measuresAhead = seed % 2 == 0; // which must make no difference
        const std::vector<std::string> running{"com.example.B"};
        const auto report = scan(made.environment, made.workers, running);
        const auto expected = naive::Scan(made, {running.begin(), running.end()}).answer();
        std::vector<naive::Found> candidates;
        for (const auto& candidate : report.candidates) {
            candidates.push_back({candidate.url.native(), candidate.title, candidate.category, candidate.size,
                                  report.sizeIsLowerBound(candidate)});
            ++found[candidate.category];
            lowerBounds += report.sizeIsLowerBound(candidate) ? 1 : 0;
            if (candidate.canMoveToTrash()) {
                ASSERT_FALSE(leadsThroughLink(candidate.url)) << "seed " << seed;
            }
        }
        ASSERT_EQ(candidates, expected.candidates) << "seed " << seed;
        for (const auto& row : allCleanupCategories) {
            ASSERT_EQ(title(report.states.at(row.value)), expected.states.at(row.value))
                << row.rawValue << ", seed " << seed;
            const auto isOfRow = [&](const naive::Found& one) { return one.category == row.value; };
            std::int64_t bytes = 0;
            for (const auto& one : expected.candidates)
                bytes += isOfRow(one) ? one.size : 0;
            ASSERT_EQ(report.metrics.at(row.value).reviewableBytes, bytes) << row.rawValue << ", seed " << seed;
            ASSERT_EQ(report.metrics.at(row.value).reviewableItemCount,
                      std::ranges::count_if(expected.candidates, isOfRow))
                << row.rawValue << ", seed " << seed;
            ASSERT_EQ(amountText(report.metrics.at(row.value).occupied), expected.amounts.at(row.value))
                << row.rawValue << ", seed " << seed;
        }
    }
    EXPECT_TRUE(lowerBounds > 0 || numberOfHomes() < 200) << "no measurement was cut short";
    for (const auto& row : allCleanupCategories)
        EXPECT_TRUE(found[row.value] > 0 || numberOfHomes() < 200) << row.rawValue << " was never found";
}

} // namespace
} // namespace vantry::CleanupScanner
