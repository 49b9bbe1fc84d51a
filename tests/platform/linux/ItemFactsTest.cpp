#include "platform/ItemFacts.h"

#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace vantry {
namespace {

using Kind = ItemFacts::Kind;

class Items : public testing::Test {
protected:
    std::filesystem::path file(const char* name, std::int64_t bytes = 0) {
        const auto path = folder / name;
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        EXPECT_TRUE(fd >= 0 && (bytes == 0 || posix_fallocate(fd, 0, bytes) == 0));
        close(fd);
        return path;
    }
    std::filesystem::path directory(const char* name, mode_t mode = 0700) {
        const auto path = folder / name;
        EXPECT_EQ(mkdir(path.c_str(), mode), 0);
        EXPECT_EQ(chmod(path.c_str(), mode), 0);
        return path;
    }
    // What an ordinary user is told, since the superuser may read everything.
    static bool isReadableToNobody(const std::filesystem::path& path) {
        if (geteuid() != 0)
            return isReadableFolder(path);
        const pid_t child = fork();
        if (child == 0)
            _exit(setgid(65534) == 0 && setuid(65534) == 0 ? (isReadableFolder(path) ? 1 : 0) : 99);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_NE(WEXITSTATUS(status), 99);
        return WEXITSTATUS(status) == 1;
    }

    TemporaryFolder folder;
};

TEST_F(Items, AreOfTheKindThatStandsAtThePathLinksNotFollowed) {
    const auto target = file("file");
    std::filesystem::create_symlink(target, folder / "link");
    std::filesystem::create_symlink(folder / "nowhere", folder / "dangling");
    std::filesystem::create_symlink(folder / "loop", folder / "loop");
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(readItemFacts(target)->kind, Kind::regularFile);
    EXPECT_EQ(readItemFacts(folder.path())->kind, Kind::folder);
    for (const char* name : {"link", "dangling", "loop"})
        EXPECT_EQ(readItemFacts(folder / name)->kind, Kind::symbolicLink) << name;
    EXPECT_EQ(readItemFacts(folder / "fifo")->kind, Kind::other);
    EXPECT_EQ(readItemFacts("/dev/null")->kind, Kind::other);
}

TEST_F(Items, ThatAreMissingOrCannotBeReachedHaveNoFacts) {
    file("file");
    EXPECT_FALSE(readItemFacts(folder / "nothing"));
    EXPECT_FALSE(readItemFacts(folder / "file/inside"));
    EXPECT_FALSE(readItemFacts(folder / std::string(300, 'x')));
    EXPECT_FALSE(readItemFacts(""));
}

TEST_F(Items, TellTheirDateToTheNanosecond) {
    const auto path = file("file");
    struct Case {
        std::int64_t seconds;
        long nanoseconds;
    };
    for (const auto& [seconds, nanoseconds] : {Case{1'700'000'000, 123'456'789}, Case{-1, 999'999'999}, Case{0, 0}}) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        EXPECT_EQ(readItemFacts(path)->contentModificationDate, systemTimeFromUnix(seconds, nanoseconds));
    }
}

TEST_F(Items, OccupyWhatIsAllocatedAndNotTheirLength) {
    EXPECT_EQ(readItemFacts(file("empty"))->allocatedBytes, 0);
    EXPECT_EQ(readItemFacts(file("reserved", 81920))->allocatedBytes, 81920);
    const auto sparse = file("sparse");
    std::filesystem::resize_file(sparse, 1'000'000'000);
    EXPECT_EQ(readItemFacts(sparse)->allocatedBytes, 0);
}

TEST_F(Items, AreFoldersAlsoThroughALink) {
    std::filesystem::create_symlink(folder.path(), folder / "link");
    std::filesystem::create_symlink(file("file"), folder / "link to file");
    std::filesystem::create_symlink(folder / "nowhere", folder / "dangling");
    EXPECT_TRUE(isFolder(folder.path()));
    EXPECT_TRUE(isFolder(folder / "link"));
    for (const char* name : {"file", "link to file", "dangling", "nothing"})
        EXPECT_FALSE(isFolder(folder / name)) << name;
}

TEST_F(Items, AreReadableFoldersWhenPermissionsLetThem) {
    chmod(folder.path().c_str(), 0755);
    EXPECT_TRUE(isReadableToNobody(directory("open", 0755)));
    EXPECT_TRUE(isReadableToNobody(directory("listable", 0744)));
    EXPECT_EQ(isReadableToNobody(directory("closed", 0700)), geteuid() != 0) << "its owner may";
    EXPECT_FALSE(isReadableToNobody(directory("enterable", 0311)));
    EXPECT_FALSE(isReadableToNobody(directory("nobody's", 0)));
    EXPECT_FALSE(isReadableToNobody(file("file")));
    EXPECT_FALSE(isReadableToNobody(folder / "nothing"));
}

TEST_F(Items, OnFileSystemsWithoutADiskAreReadableByTheirPermissionBits) {
    const TemporaryFolder inMemory(folderForManyFiles());
    chmod(inMemory.path().c_str(), 0755);
    for (const auto& [mode, isReadable] :
         {std::pair<mode_t, bool>{0755, true}, {0744, true}, {0311, false}, {0, false}}) {
        const auto path = inMemory / std::to_string(mode);
        ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        EXPECT_EQ(isReadableToNobody(path), isReadable) << mode;
    }
}

TEST_F(Items, AreShownByTheirNameAsText) {
    EXPECT_EQ(displayName("/a/b c.app"), "b c.app");
    EXPECT_EQ(displayName("/a/b/"), "b");
    EXPECT_EQ(displayName("/a/\xff.log"), "\xef\xbf\xbd.log");
    EXPECT_EQ(displayName("/"), "");
}

} // namespace
} // namespace vantry
