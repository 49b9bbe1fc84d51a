#include "cleanup/move/CleanupHistory.h"
#include "base/UniqueFd.h"
#include "tests/support/Candidates.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileFacts.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::UnorderedElementsAre;

const SystemTime now{std::chrono::seconds(1'769'847'300) + std::chrono::milliseconds(999)};

class CleanupHistory : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> namesIn(const std::filesystem::path& place) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(place))
            names.push_back(entry.path().filename());
        return names;
    }
    [[nodiscard]] std::string onlyRecord() const {
        const auto names = namesIn(folder);
        return names.size() == 1 ? readFile(folder / names.front()) : "not one record";
    }
    /// Dates an item in the folder `seconds` before `now`.
    void age(const std::string& name, std::chrono::seconds seconds) const { setModified(folder / name, now - seconds); }
    void makeFile(const std::string& name, std::chrono::seconds seconds) const {
        writeFile(folder / name, "{}");
        age(name, seconds);
    }

    /// What `run` answers where no file can be longer than 50 bytes.
    template <class Run>
    [[nodiscard]] static std::string withoutRoom(Run run) {
        return inChildProcess([&] {
            signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{50, 50};
            setrlimit(RLIMIT_FSIZE, &limit);
            return std::string(run() ? "saved" : "not saved");
        });
    }

    /// Writes the record of a move that ends with `moved`.
    [[nodiscard]] bool save(std::span<const CleanupCandidate> moved) const {
        return saveHistory(moved, home.path(), CleanupRecord::startedAt(now), RecordVersion::last);
    }

    TemporaryFolder home;
    std::filesystem::path folder = home / "Library/Application Support/Ombrel/Cleanup History";
    std::vector<CleanupCandidate> candidates{logAt("/l/a", 100)};
};

TEST_F(CleanupHistory, WritesOneEntryPerItemWithSortedKeys) {
    const std::vector moved{logAt("/l/third.log", 3), candidateAt("/d/x.dmg", CleanupCategory::installer, 50),
                            logAt("/l/first.log", 1), logAt("/l/second.log", 2)};
    ASSERT_TRUE(save(moved));
    EXPECT_EQ(onlyRecord(), R"({
  "entries": [
    {
      "bytes": 50,
      "category": "Downloaded App Installers"
    },
    {
      "bytes": 3,
      "category": "Old Log Files"
    },
    {
      "bytes": 1,
      "category": "Old Log Files"
    },
    {
      "bytes": 2,
      "category": "Old Log Files"
    }
  ],
  "itemCount": 4,
  "movedAt": "2026-01-31T08:15:00Z",
  "totalBytes": 56
})");
}

TEST_F(CleanupHistory, ARecordOfEveryCategoryIsValidJson) {
    std::vector<CleanupCandidate> moved;
    for (const auto& row : allCleanupCategories)
        moved.push_back(candidateAt("/l/" + std::to_string(moved.size()), row.value, 1));
    const auto json = cleanupHistoryJson(moved, now);
    ASSERT_TRUE(json);
    EXPECT_EQ(nlohmann::json::parse(*json).dump(2), *json);
}

TEST_F(CleanupHistory, HoldsNothingPrivate) {
    std::vector<CleanupCandidate> moved;
    std::vector<std::string> secrets;
    int number = 0;
    for (const auto& row : allCleanupCategories) {
        const auto name = "secretname" + std::to_string(++number);
        auto candidate = CleanupCandidate::withFingerprint(
            "/home/ada/secretfolder/" + name + ".log", "secrettitle" + std::to_string(number), row.value,
            "secretreason", number, CleanupConfidence::suggested,
            {.contentModificationDate = SystemTime(std::chrono::seconds(1'111'111'111)),
             .resourceIdentifier = "secretresource",
             .volumeIdentifier = "secretvolume"},
            SystemTime(std::chrono::seconds(1'222'222'222)));
        secrets.insert(secrets.end(), {candidate.uiID, candidate.url.native(), candidate.title, name});
        moved.push_back(std::move(candidate));
    }
    secrets.insert(secrets.end(),
                   {"secret", "ada", "home", "/", "1111111111", "1222222222", "2005-03", "2008-09", ".log"});
    ASSERT_TRUE(save(moved));
    const auto record = onlyRecord();
    for (const auto& secret : secrets) {
        EXPECT_THAT(record, Not(testing::HasSubstr(secret)));
        EXPECT_THAT(namesIn(folder).front(), Not(testing::HasSubstr(secret)));
    }
}

TEST_F(CleanupHistory, IsForTheUserAlone) {
    const mode_t umaskBefore = umask(0);
    const bool saved = save(candidates);
    umask(umaskBefore);
    ASSERT_TRUE(saved);
    for (auto path = folder; path != home.path(); path = path.parent_path())
        EXPECT_EQ(permissionsOf(path), 0700) << path;
    EXPECT_EQ(permissionsOf(folder / namesIn(folder).front()), 0600);
}

TEST_F(CleanupHistory, RestrictsAnExistingFolderToItsOwner) {
    std::filesystem::create_directories(folder);
    chmod(folder.c_str(), 0755);
    chmod((home / "Library").c_str(), 0750);
    ASSERT_TRUE(save(candidates));
    EXPECT_EQ(permissionsOf(folder), 0700);
    EXPECT_EQ(permissionsOf(home / "Library"), 0750) << "what is above it stays as it is";
}

TEST_F(CleanupHistory, NamesTheRecordByTheSecondAndAtRandom) {
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(save(candidates));
    const auto names = namesIn(folder);
    EXPECT_EQ(names.size(), 20) << "also within one second";
    for (const auto& name : names)
        EXPECT_THAT(name, MatchesRegex("cleanup-1769847300-[0-9A-F]{8}\\.json"));
}

TEST_F(CleanupHistory, ATotalThatOverflowsIsNotRecorded) {
    const auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_FALSE(save(std::vector{logAt("/a", largest), logAt("/b", 1)}));
    EXPECT_THAT(namesIn(home.path()), IsEmpty());
    EXPECT_FALSE(cleanupHistoryJson(std::vector{logAt("/a", largest), logAt("/b", largest)}, now));
    EXPECT_TRUE(save(std::vector{logAt("/a", largest - 1), logAt("/b", 1)}));
    EXPECT_EQ(nlohmann::json::parse(onlyRecord())["totalBytes"], largest);
}

TEST_F(CleanupHistory, WithoutAFolderOfItsOwnNoRecordIsWritten) {
    EXPECT_FALSE(saveHistory(candidates, home / "no such home", CleanupRecord::startedAt(now), RecordVersion::last));
    EXPECT_FALSE(std::filesystem::exists(home / "no such home"));
    for (const auto& inTheWay : {home / "Library", folder}) {
        std::filesystem::create_directories(inTheWay.parent_path());
        writeFile(inTheWay, "a file");
        EXPECT_FALSE(save(candidates)) << inTheWay;
        EXPECT_EQ(readFile(inTheWay), "a file");
        std::filesystem::remove(inTheWay);
    }
    const auto elsewhere = home / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    chmod(elsewhere.c_str(), 0755);
    std::filesystem::create_symlink(elsewhere, folder);
    EXPECT_FALSE(save(candidates)) << "a link is not followed";
    EXPECT_THAT(namesIn(elsewhere), IsEmpty());
    EXPECT_EQ(permissionsOf(elsewhere), 0755);
}

TEST_F(CleanupHistory, AnotherUsersFolderIsNotUsed) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make another user's folder";
    std::filesystem::create_directories(folder);
    chmod(folder.c_str(), 0755);
    ASSERT_EQ(chown(folder.c_str(), 65534, 65534), 0);
    EXPECT_FALSE(save(candidates));
    EXPECT_THAT(namesIn(folder), IsEmpty());
    EXPECT_EQ(permissionsOf(folder), 0755);
}

TEST_F(CleanupHistory, ARecordThatCannotBeWrittenCompletelyLeavesNothing) {
    EXPECT_EQ(withoutRoom([&] { return save(candidates); }), "not saved");
    EXPECT_THAT(namesIn(folder), IsEmpty());
}

TEST_F(CleanupHistory, ADraftLeftByAKilledProcessIsRemovedByALaterSave) {
    std::ignore = inChildProcess([&] {
        const rlimit nothing{0, 0};
        setrlimit(RLIMIT_CORE, &nothing);
        const rlimit limit{50, 50}; // which ends the process while it writes
        setrlimit(RLIMIT_FSIZE, &limit);
        return std::string(save(candidates) ? "saved" : "not saved");
    });
    const auto left = namesIn(folder);
    ASSERT_EQ(left.size(), 1U);
    age(left.front(), std::chrono::minutes(61));
    ASSERT_TRUE(save(candidates));
    EXPECT_THAT(namesIn(folder), ElementsAre(MatchesRegex("cleanup-1769847300-.*\\.json")));
}

TEST_F(CleanupHistory, ADraftThatAnotherInstanceMayBeWritingStays) {
    std::filesystem::create_directories(folder);
    makeFile(".cleanup-1769847200-01234567.json.new", std::chrono::minutes(59));
    makeFile(".cleanup-1769840000-01234567.json.new", std::chrono::minutes(61));
    makeFile(".cleanup.json.new", std::chrono::minutes(61));
    ASSERT_TRUE(save(candidates));
    EXPECT_THAT(namesIn(folder), UnorderedElementsAre(".cleanup-1769847200-01234567.json.new",
                                                      MatchesRegex("cleanup-1769847300-.*\\.json")));
}

TEST_F(CleanupHistory, EachVersionOfARecordReplacesTheOneBefore) {
    const auto record = CleanupRecord::startedAt(now);
    std::vector<CleanupCandidate> moved;
    for (int count = 1; count <= 3; ++count) {
        moved.push_back(logAt("/l/" + std::to_string(count), count));
        ASSERT_TRUE(saveHistory(moved, home.path(), record, count < 3 ? RecordVersion::interim : RecordVersion::last));
        EXPECT_EQ(readFile(folder / record.fileName), cleanupHistoryJson(moved, now));
        EXPECT_EQ(permissionsOf(folder / record.fileName), 0600);
    }
    EXPECT_THAT(namesIn(folder), ElementsAre(record.fileName)) << "no draft stays";
}

TEST_F(CleanupHistory, InterimVersionsReuseTwoFiles) {
    const auto record = CleanupRecord::startedAt(now);
    const auto file = folder / record.fileName;
    std::vector<CleanupCandidate> moved;
    std::vector<ino_t> numbers;
    for (int count = 1; count <= 6; ++count) {
        moved.push_back(logAt("/l/" + std::to_string(count), 1'000 * count));
        ASSERT_TRUE(saveHistory(moved, home.path(), record, RecordVersion::interim));
        EXPECT_EQ(readFile(file), cleanupHistoryJson(moved, now));
        numbers.push_back(factsOf(file).st_ino);
    }
    EXPECT_THAT(namesIn(folder), UnorderedElementsAre(record.fileName, "." + record.fileName + ".new"));
    EXPECT_NE(numbers[0], numbers[1]);
    for (std::size_t i = 2; i < numbers.size(); ++i)
        EXPECT_EQ(numbers[i], numbers[i - 2]);
}

TEST_F(CleanupHistory, AShorterVersionHoldsNothingOfALongerDraft) {
    const auto record = CleanupRecord::startedAt(now);
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::interim));
    const auto draft = folder / ("." + record.fileName + ".new");
    writeFile(draft, std::string(5'000, 'x'));
    chmod(draft.c_str(), 0644);
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::interim));
    EXPECT_EQ(readFile(folder / record.fileName), cleanupHistoryJson(candidates, now));
    EXPECT_EQ(permissionsOf(folder / record.fileName), 0600);
}

TEST_F(CleanupHistory, AnItemInPlaceOfTheDraftIsNeitherFollowedNorWritten) {
    const auto record = CleanupRecord::startedAt(now);
    const auto draft = folder / ("." + record.fileName + ".new");
    const auto victim = home / "victim";
    writeFile(victim, "kept");
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::interim));
    const std::vector two{candidates.front(), logAt("/l/b", 5)};
    const auto refuses = [&] {
        ASSERT_FALSE(saveHistory(two, home.path(), record, RecordVersion::interim));
        EXPECT_EQ(readFile(victim), "kept");
        EXPECT_EQ(readFile(folder / record.fileName), cleanupHistoryJson(candidates, now));
        EXPECT_EQ(unlink(draft.c_str()), 0);
    };
    std::filesystem::create_symlink(victim, draft);
    refuses();
    std::filesystem::create_hard_link(victim, draft);
    refuses();
    ASSERT_EQ(mkfifo(draft.c_str(), 0600), 0);
    const UniqueFd reader(open(draft.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)); // lets it be opened for writing
    refuses();
    ASSERT_FALSE(HasFatalFailure()); // the record may be the pipe
    ASSERT_TRUE(saveHistory(two, home.path(), record, RecordVersion::interim));
    EXPECT_EQ(readFile(folder / record.fileName), cleanupHistoryJson(two, now));
}

TEST_F(CleanupHistory, ARecordThatCannotBeReplacedStaysAsItWas) {
    const auto record = CleanupRecord::startedAt(now);
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::interim));
    const std::vector two{candidates.front(), logAt("/l/b", 5)};
    EXPECT_EQ(withoutRoom([&] { return saveHistory(two, home.path(), record, RecordVersion::last); }), "not saved");
    EXPECT_EQ(onlyRecord(), cleanupHistoryJson(candidates, now));
    EXPECT_EQ(withoutRoom([&] { return saveHistory(two, home.path(), record, RecordVersion::interim); }), "not saved");
    EXPECT_EQ(readFile(folder / record.fileName), cleanupHistoryJson(candidates, now));
}

TEST_F(CleanupHistory, OnlyTheLastVersionOfARecordPrunes) {
    std::filesystem::create_directories(folder);
    makeFile("91 days.json", std::chrono::days(91));
    const auto record = CleanupRecord::startedAt(now);
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::interim));
    EXPECT_THAT(namesIn(folder), UnorderedElementsAre("91 days.json", record.fileName));
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::last));
    EXPECT_THAT(namesIn(folder), ElementsAre(record.fileName));
}

TEST_F(CleanupHistory, InAReadOnlyFolderNoRecordIsWritten) {
    constexpr uid_t somebody = 65534;
    const auto library = home / "Library";
    std::filesystem::create_directory(library);
    if (geteuid() == 0) {
        for (const auto& path : {home.path(), library})
            ASSERT_EQ(chown(path.c_str(), somebody, somebody), 0);
    }
    chmod(library.c_str(), 0500);
    const auto answer = inChildProcess([&] {
        if (geteuid() == 0 && (setgid(somebody) != 0 || setuid(somebody) != 0)) // root may write anywhere
            return std::string("not another user");
        return std::string(save(candidates) ? "saved" : "not saved");
    });
    EXPECT_EQ(answer, "not saved");
    EXPECT_THAT(namesIn(library), IsEmpty());
}

TEST_F(CleanupHistory, SavingRemovesRecordsThatAreTooOld) {
    std::filesystem::create_directories(folder / "folder.json/inside");
    std::filesystem::create_directory(folder / "empty.json");
    writeFile(home / "target.json", "x");
    std::filesystem::create_symlink(home / "target.json", folder / "link.json");
    ASSERT_EQ(mkfifo((folder / "fifo.json").c_str(), 0600), 0);
    using std::chrono::days;
    std::vector<std::string> kept{"folder.json", "empty.json", "link.json", "fifo.json"};
    for (const auto& name : kept)
        age(name, days(400));
    constexpr auto lifetime = std::chrono::seconds(7'776'000);
    makeFile("91 days.json", days(91));
    makeFile("a moment over.json", lifetime + std::chrono::seconds(1));
    const std::pair<const char*, std::chrono::seconds> young[] = {
        {"exactly.json", lifetime}, {"89 days.json", days(89)}, {"future.json", -days(5)}};
    for (const auto& [name, seconds] : young) {
        makeFile(name, seconds);
        kept.emplace_back(name);
    }
    for (const char* other :
         {"old.txt", "old.JSON", "old.json.bak", "json", "old", ".hidden.json", ".json", "old.jsonx", ".cleanup",
          ".cleanup-1769840000-01234567.json", ".hidden.json.new", "old.json.new"}) {
        makeFile(other, days(400));
        kept.emplace_back(other);
    }
    const auto record = CleanupRecord::startedAt(now);
    ASSERT_TRUE(saveHistory(candidates, home.path(), record, RecordVersion::last));
    kept.push_back(record.fileName);
    EXPECT_THAT(namesIn(folder), testing::UnorderedElementsAreArray(kept));
    EXPECT_TRUE(std::filesystem::exists(home / "target.json"));
    EXPECT_TRUE(std::filesystem::exists(folder / "folder.json/inside"));
}

TEST_F(CleanupHistory, PruningAnUnlistableFolderEndsQuietly) {
    pruneCleanupHistory(home / "nothing", now);
    writeFile(home / "file", "x");
    pruneCleanupHistory(home / "file", now);
    EXPECT_THAT(namesIn(home.path()), ElementsAre("file"));
}

} // namespace

} // namespace vantry
