#include "tests/platform/linux/TrashFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TestSystem.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <pwd.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace fs = std::filesystem;

using TrashTest = TrashFixture;
using Origins = std::map<std::string, std::string>;

TEST_F(TrashTest, HoldsTheFileItselfAndTellsItsOrigin) {
    struct stat before = {};
    ASSERT_EQ(stat(file.c_str(), &before), 0);
    ASSERT_EQ(move(file), "moved");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
    EXPECT_EQ(infoCount(), 1U);
    EXPECT_EQ(readFile(trash / "files/report.log"), "what the file holds");
    struct stat after = {};
    ASSERT_EQ(stat((trash / "files/report.log").c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST_F(TrashTest, TellsTheDateInLocalTime) {
    for (const char* zone : {"UTC", "XYZ-11", "ABC+7:30"}) {
        writeFile(file, "text");
        const ScopedEnvironment environment("TZ", zone);
        const std::time_t before = std::time(nullptr);
        ASSERT_EQ(move(file), "moved");
        const std::time_t after = std::time(nullptr);
        const std::string info = readFile(trash / "info/report.log.trashinfo");
        std::tm read = {};
        const auto date = info.find("DeletionDate=");
        ASSERT_NE(date, info.npos);
        ASSERT_STREQ(strptime(info.c_str() + date, "DeletionDate=%Y-%m-%dT%H:%M:%S", &read), "\n");
        read.tm_isdst = -1;
        const std::time_t told = std::mktime(&read);
        EXPECT_LE(before, told) << zone;
        EXPECT_LE(told, after) << zone;
        fs::remove_all(trash);
    }
}

TEST_F(TrashTest, IsMadeForItsUserAlone) {
    ASSERT_EQ(move(file), "moved");
    for (const fs::path& folder : {root / "data", trash, trash / "files", trash / "info"})
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all) << folder;
    EXPECT_EQ(fs::status(trash / "info/report.log.trashinfo").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(TrashTest, LeavesNoDescriptorOpen) {
    const auto before = openDescriptorCount();
    ASSERT_EQ(move(file), "moved");
    writeFile(file, "");
    ASSERT_EQ(move(file), "moved");
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST_F(TrashTest, GivesAFileOfATakenNameAnother) {
    for (int i = 0; i < 120; ++i) {
        writeFile(file, std::to_string(i));
        ASSERT_EQ(move(file), "moved") << i;
    }
    const auto all = origins();
    EXPECT_EQ(all.size(), 120U);
    EXPECT_EQ(infoCount(), 120U);
    EXPECT_TRUE(all.contains("report.log") && all.contains("report.2.log") && all.contains("report.50.log"));
    std::map<std::string, int> contents;
    for (const auto& [name, origin] : all) {
        EXPECT_EQ(origin, file) << name;
        ++contents[readFile(trash / "files" / name)];
    }
    EXPECT_EQ(contents.size(), 120U);
}

TEST_F(TrashTest, TakesNoNameThatHasOnlyAFileOrOnlyAnInfoFile) {
    makeTrash();
    writeFile(trash / "files/report.log", "of somebody who wrote no info file");
    writeFile(trash / "info/report.2.log.trashinfo", "of a file that is gone");
    fs::create_symlink("nowhere", trash / "files/report.3.log");
    fs::create_directory(trash / "files/report.4.log");
    ASSERT_EQ(move(file), "moved");
    EXPECT_EQ(readFile(trash / "files/report.log"), "of somebody who wrote no info file");
    EXPECT_EQ(readFile(trash / "info/report.2.log.trashinfo"), "of a file that is gone");
    EXPECT_TRUE(fs::is_symlink(trash / "files/report.3.log"));
    EXPECT_EQ(origins(),
              (Origins{{"report.log", ""}, {"report.3.log", ""}, {"report.4.log", ""}, {"report.5.log", file}}));
    EXPECT_EQ(infoCount(), 2U);
}

TEST_F(TrashTest, TakesEveryName) {
    const std::vector<std::string> names{
        std::string(255, 'x'),
        std::string(251, 'x') + ".log",
        std::string(245, 'y'),
        std::string(246, 'y'),
        "two\nlines",
        "[Trash Info]\nPath=%41",
        " ",
        "\xff\xfe.log",
        std::string(255, '\xff'),
        "100%25.log",
        "-rf",
        ".hidden",
    };
    for (const std::string& name : names) {
        writeFile(place / name, name);
        ASSERT_EQ(move(place / name), "moved") << name;
    }
    const auto all = origins();
    ASSERT_EQ(all.size(), names.size());
    for (const auto& [name, origin] : all) {
        EXPECT_EQ(readFile(trash / "files" / name), fs::path(origin).filename());
        EXPECT_EQ(fs::path(origin).parent_path(), place);
        EXPECT_LE(name.size() + std::string(".trashinfo").size(), 255U);
    }
}

TEST_F(TrashTest, RecordsTheResolvedPathOfAFolderThatWasOpenedByAnotherPath) {
    fs::create_directory(root / "aside");
    const auto folder = PinnedFolder::open(root / "aside/..//place/.").value();
    ASSERT_EQ(move(PinnedFile::open(folder, "report.log").value()), "moved");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashTest, RefusesWhatIsNotInItsPlaceAndTouchesNothing) {
    struct Case {
        const char* what;
        std::function<void()> change;
        const char* reason;
    };
    const fs::path aside = root / "aside";
    const std::vector<Case> cases{
        {"removed", [&] { fs::rename(file, aside); }, "it is not to be found in its place"},
        {"replaced", [&] { fs::rename(file, aside), writeFile(file, "other"); }, "something else is in its place"},
        {"link", [&] { fs::rename(file, aside), fs::create_symlink(aside, file); }, "something else is in its place"},
        {"folder renamed", [&] { fs::rename(place, aside); }, "its folder is not to be found in its place"},
        {"folder a link", [&] { fs::rename(place, aside), fs::create_directory_symlink(aside, place); },
         "its folder is not to be found in its place"},
        {"folder replaced", [&] { fs::rename(place, aside), fs::create_directory(place), writeFile(file, "other"); },
         "its folder is not to be found in its place"},
    };
    for (const auto& [what, change, reason] : cases) {
        const PinnedFile item = pinned(file);
        change();
        EXPECT_EQ(move(item), reason) << what;
        EXPECT_FALSE(fs::exists(root / "data")) << what;
        fs::remove_all(place);
        fs::remove_all(aside);
        fs::create_directory(place);
        writeFile(file, "what the file holds");
    }
}

TEST_F(TrashTest, RefusesAFolder) {
    fs::create_directory(place / "folder");
    EXPECT_EQ(move(place / "folder"), "it is not a file");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashTest, RefusesATrashThatIsALinkOrNoFolder) {
    for (const char* part : {"", "files", "info"}) {
        for (const bool isLink : {true, false}) {
            fs::create_directories(root / "elsewhere/files");
            fs::create_directories(root / "elsewhere/info");
            fs::create_directories(trash.parent_path());
            const fs::path bad = *part ? trash / part : trash;
            if (*part)
                fs::create_directory(trash);
            if (isLink)
                fs::create_directory_symlink(root / "elsewhere" / part, bad);
            else
                writeFile(bad, "");
            EXPECT_EQ(move(file), "the Trash is a link or not a folder") << part;
            EXPECT_TRUE(fs::exists(file));
            EXPECT_TRUE(fs::is_empty(root / "elsewhere/files"));
            EXPECT_TRUE(fs::is_empty(root / "elsewhere/info"));
            fs::remove_all(trash);
            fs::remove_all(root / "elsewhere");
        }
    }
}

// A ~/.local on another disk, for instance, as long as the file is there as well.
TEST_F(TrashTest, MayBeBelowALink) {
    fs::create_directory(root / "elsewhere");
    fs::create_directory_symlink(root / "elsewhere", root / "data");
    ASSERT_EQ(move(file), "moved");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
    EXPECT_EQ(readFile(root / "elsewhere/Trash/files/report.log"), "what the file holds");
}

TEST_F(TrashTest, IsNotMadeBelowALinkThatLeadsNowhere) {
    fs::create_directory_symlink(root / "nowhere", root / "data");
    EXPECT_EQ(move(file), "the Trash could not be opened: it no longer exists");
    EXPECT_TRUE(fs::exists(file));
    EXPECT_FALSE(fs::exists(root / "nowhere"));
}

TEST_F(TrashTest, RefusesTheTrashOfAnotherUser) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give folders away";
    for (const char* part : {"", "files", "info"}) {
        makeTrash();
        ASSERT_EQ(chown((*part ? trash / part : trash).c_str(), unknownUser(), unknownUser()), 0);
        EXPECT_EQ(move(file), "the Trash belongs to another user") << part;
        EXPECT_TRUE(nothingMoved());
        fs::remove_all(trash);
    }
}

TEST_F(TrashTest, TellsWhatAUserMayNotDo) {
    struct Case {
        fs::path folder;
        mode_t rights;
        const char* reason;
    };
    const std::vector<Case> cases{
        {place, 0500, "it could not be moved: the system does not permit it"},
        {place, 0300, "its folder could not be opened: the system does not permit it"},
        {trash / "info", 0500, "the Trash could not be written to: the system does not permit it"},
        {trash / "files", 0500, "it could not be moved: the system does not permit it"},
        {trash / "files", 0, "the Trash could not be opened: the system does not permit it"},
        {trash, 0500, "moved"},
        {trash, 0, "the Trash could not be opened: the system does not permit it"},
        {trash.parent_path(), 0, "the Trash could not be opened: the system does not permit it"},
    };
    for (const auto& [folder, rights, reason] : cases) {
        makeTrash();
        const std::string answer = inChildProcess([&]() -> std::string {
            const uid_t user = geteuid() == 0 ? unknownUser() : geteuid();
            if (geteuid() == 0) {
                for (const fs::path& path :
                     {root, place, file, root / "data", trash, trash / "files", trash / "info"}) {
                    if (chown(path.c_str(), user, user) != 0)
                        return "not given away";
                }
            }
            if (geteuid() == 0 && !becomeUser(user))
                return "cannot become another user";
            if (chmod(folder.c_str(), rights) != 0)
                return "no such rights";
            const std::string outcome = move(file);
            if (chmod(folder.c_str(), 0700) != 0)
                return "no other rights";
            return outcome;
        });
        EXPECT_EQ(answer, reason) << folder << ' ' << rights;
        if (answer == "moved") {
            EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
            fs::rename(trash / "files/report.log", file);
        } else {
            EXPECT_TRUE(fs::exists(file));
            EXPECT_EQ(infoCount(), 0U) << folder;
        }
        fs::remove_all(root / "data");
    }
}

TEST_F(TrashTest, TellsThatTooManyFilesAreOpen) {
    for (const rlim_t more : {0U, 1U, 2U, 3U, 4U}) {
        const std::string answer = inChildProcess([&]() -> std::string {
            makeTrash();
            const PinnedFile item = pinned(file);
            const UniqueFd next(open("/dev/null", O_RDONLY | O_CLOEXEC));
            const auto free = static_cast<rlim_t>(next.get());
            const rlimit limit{free + more + 1, free + more + 1}; // one is `next`, which stays open
            if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
                return "no limit";
            return move(item);
        });
        if (more == 0)
            EXPECT_EQ(answer, "its folder is not to be found in its place");
        else
            EXPECT_NE(answer.find("too many files are open"), answer.npos) << more << answer;
        EXPECT_TRUE(nothingMoved()) << more;
    }
}

TEST_F(TrashTest, IsInTheDataFolderThatTheEnvironmentNames) {
    struct Case {
        const char* data;
        const char* home;
        const char* expected;
    };
    const std::vector<Case> cases{
        {"/data", "/home/me", "/data/Trash"},
        {"/data/", "/home/me", "/data/Trash"},
        {nullptr, "/home/me", "/home/me/.local/share/Trash"},
        {"", "/home/me", "/home/me/.local/share/Trash"},
        {"data", "/home/me", "/home/me/.local/share/Trash"},
        {"./data", "/home/me", "/home/me/.local/share/Trash"},
        {"/data", nullptr, "/data/Trash"},
    };
    for (const auto& [data, home, expected] : cases) {
        const ScopedEnvironment dataHome("XDG_DATA_HOME", data);
        const ScopedEnvironment homeFolder("HOME", home);
        EXPECT_EQ(homeTrash(), fs::path(expected));
    }
}

TEST_F(TrashTest, IsInTheHomeFolderOfTheUserDatabaseWhenTheEnvironmentNamesNone) {
    const passwd* entry = getpwuid(getuid());
    if (!entry)
        GTEST_SKIP() << "this user is not in the user database";
    const fs::path expected = fs::path(entry->pw_dir) / ".local/share/Trash";
    for (const char* value : {static_cast<const char*>(nullptr), "", "me"}) {
        const ScopedEnvironment dataHome("XDG_DATA_HOME", value);
        const ScopedEnvironment home("HOME", value);
        EXPECT_EQ(homeTrash(), expected);
    }
}

TEST_F(TrashTest, IsMissingForAUserWithoutAHomeFolder) {
    const std::string answer = inChildProcess([&]() -> std::string {
        const PinnedFile item = pinned(file);
        if (!becomeUser(unknownUser()))
            return "cannot become another user";
        unsetenv("XDG_DATA_HOME");
        unsetenv("HOME");
        return homeTrash() ? "somewhere" : textOf(moveToTrash(item, item.facts().value()));
    });
    if (answer == "cannot become another user")
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "there is no home folder that could hold a Trash");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashTest, IsMadeWithItsFoldersInAHomeThatHasNone) {
    const ScopedEnvironment dataHome("XDG_DATA_HOME", "");
    const ScopedEnvironment home("HOME", root.c_str());
    const PinnedFile item = pinned(file);
    ASSERT_EQ(textOf(moveToTrash(item, item.facts().value())), "moved");
    trash = root / ".local/share/Trash";
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashTest, IsNeverOneOnAnotherFileSystem) {
    const fs::path other = folderForManyFiles();
    struct stat here = {};
    struct stat there = {};
    if (stat(root.c_str(), &here) != 0 || stat(other.c_str(), &there) != 0 || here.st_dev == there.st_dev)
        GTEST_SKIP() << "one file system only";
    const TemporaryFolder elsewhere(other);
    trash = fs::canonical(elsewhere.path()) / "Trash";
    makeTrash();
    const auto before = fs::last_write_time(trash / "info") - std::chrono::hours(1);
    fs::last_write_time(trash / "info", before);
    EXPECT_EQ(move(file), "it is on another file system than the Trash");
    EXPECT_TRUE(nothingMoved());
    EXPECT_EQ(fs::last_write_time(trash / "info"), before) << "no info file was made";
}

// Two mounts of one device, between which nothing is renamed.
TEST_F(TrashTest, TakesNoFileFromAnotherMountOfItsFileSystem) {
    makeTrash();
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!keepMountsPrivate() || mount(place.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) != 0)
            return "no mount";
        return move(file);
    });
    if (answer == "no mount")
        GTEST_SKIP() << "no mount of our own";
    EXPECT_EQ(answer, "it is on another file system than the Trash");
    EXPECT_TRUE(nothingMoved());
}

} // namespace vantry
