#include "cleanup/measuring/DiskUsage.h"

#include "base/Format.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileFacts.h"
#include "tests/support/MountedFolder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vantry::CleanupScanner {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

class DiskUsage : public testing::Test {
protected:
    [[nodiscard]] static DirectoryMetrics used(const fs::path& path, const std::vector<std::string>& endings = {}) {
        return diskUsageInProcess(path, endings, deadlineIn(seconds(60)));
    }
    static std::int64_t blocks(const fs::path& path) {
        struct stat facts = {};
        EXPECT_EQ(lstat(path.c_str(), &facts), 0) << path;
        return 512 * facts.st_blocks;
    }

    const TemporaryFolder root;
    const fs::path folder = root / "folder";
};

TEST_F(DiskUsage, IsThatOfFoldersAndLinksTooAndOfAFileWithSeveralNamesOnce) {
    fs::create_directories(folder / "a/b");
    writeFile(folder / "one", std::string(100'000, 'x'));
    writeFile(folder / "a/b/.hidden", std::string(5000, 'x'));
    fs::create_hard_link(folder / "one", folder / "a/again");
    fs::create_hard_link(folder / "one", folder / "a/b/again");
    fs::create_symlink("one", folder / "link");
    fs::create_symlink(root / "other", folder / "link to a folder");
    fs::create_directory(root / "other");
    writeFile(root / "other/large", std::string(500'000, 'x'));
    std::int64_t all = 0;
    for (const char* name : {"", "one", "link", "link to a folder", "a", "a/b", "a/b/.hidden"})
        all += blocks(*name ? folder / name : folder);
    EXPECT_EQ(used(folder), (DirectoryMetrics{.size = all, .complete = true}));
    EXPECT_EQ(used(folder / "one"), (DirectoryMetrics{.size = blocks(folder / "one"), .complete = true}));
    EXPECT_EQ(used(folder / "link to a folder").size, blocks(folder / "link to a folder"));
}

TEST_F(DiskUsage, OfAFileWithTwoNamesIsCountedOnceAndOnlyWithinItsFileSystem) {
    fs::create_directories(folder);
    writeFile(folder / "one", std::string(10'000, 'x'));
    fs::create_hard_link(folder / "one", folder / "two");
    const auto all = blocks(folder) + blocks(folder / "one");
    EXPECT_EQ(used(folder).size, all);
    const MountedFolder mounted(folder / "mounted");
    if (!mounted)
        GTEST_SKIP() << "may not mount";
    writeFile(folder / "mounted/three", std::string(10'000, 'x'));
    EXPECT_EQ(used(folder), (DirectoryMetrics{.size = blocks(folder) + blocks(folder / "one"), .complete = true}));
}

TEST_F(DiskUsage, OfEndingsIsThatOfFilesWithThem) {
    fs::create_directories(folder / "below.vdi");
    for (const char* name : {"a.qcow2", "b.vdi", "below.vdi/c.vdi", "d.vdi.txt", "vdi"})
        writeFile(folder / name, std::string(10'000, 'x'));
    fs::create_symlink("b.vdi", folder / "link.vdi");
    EXPECT_EQ(used(folder, {".qcow2", ".vdi"}).size,
              blocks(folder / "a.qcow2") + blocks(folder / "b.vdi") + blocks(folder / "below.vdi/c.vdi"));
    EXPECT_EQ(used(folder, {".vmdk"}), (DirectoryMetrics{.size = 0, .complete = true}));
}

TEST_F(DiskUsage, IsIncompleteWithoutTimeAndWhereNothingIs) {
    fs::create_directories(folder / "a");
    EXPECT_FALSE(diskUsageInProcess(folder, {}, deadlineIn(seconds(-1))).complete);
    EXPECT_EQ(used(root / "missing"), DirectoryMetrics());
}

TEST_F(DiskUsage, OfAFolderWithNothingInItIsNothing) {
    fs::create_directories(folder);
    EXPECT_EQ(used(folder), (DirectoryMetrics{.size = 0, .complete = true}));
    fs::create_directories(folder / "a");
    EXPECT_EQ(used(folder), (DirectoryMetrics{.size = blocks(folder) + blocks(folder / "a"), .complete = true}));
    for (const char* place : {"/srv", "/media", "/mnt"}) { // on a disk, where an empty folder occupies something
        std::error_code failure;
        if (fs::is_empty(place, failure) && !failure)
            EXPECT_EQ(used(place), (DirectoryMetrics{.size = 0, .complete = true})) << place;
    }
}

TEST_F(DiskUsage, OfAWideFolderEndsAtTheDeadlineAndKeepsWhatWasCounted) {
    fs::create_directories(folder);
    for (int i = 0; i < 5000; ++i)
        writeFile(folder / std::to_string(i), "x");
    const auto timeOf = [&](Deadline deadline) {
        const auto before = std::clock();
        const auto usage = diskUsageInProcess(folder, {}, deadline);
        EXPECT_EQ(usage.complete, !hasPassed(deadline));
        EXPECT_GT(usage.size, 0);
        return std::clock() - before;
    };
    const auto whole = timeOf(deadlineIn(seconds(60)));
    EXPECT_LT(timeOf(deadlineIn(seconds(-1))) * 10, whole);
}

TEST_F(DiskUsage, IsALowerBoundWhenAFolderMayNotBeRead) {
    fs::create_directories(folder / "closed");
    writeFile(folder / "closed/file", "");
    writeFile(folder / "open", std::string(10'000, 'x'));
    fs::permissions(root.path(), fs::perms::all);
    for (const auto left : {fs::perms::none, fs::perms::others_read}) { // which tells the names only
        fs::permissions(folder / "closed", left);
        const std::string said = inChildProcess([&]() -> std::string {
            if (!becomeUser(unknownUser())) // root may read everything
                return "no other user";
            const auto usage = used(folder);
            return formatted("{}, {}", usage.complete ? "complete" : "a lower bound",
                             usage.size >= blocks(folder / "open"));
        });
        fs::permissions(folder / "closed", fs::perms::all);
        if (said == "no other user")
            GTEST_SKIP() << "has to become another user";
        EXPECT_EQ(said, "a lower bound, true") << (left == fs::perms::none ? "" : "names only");
    }
}

} // namespace
} // namespace vantry::CleanupScanner
