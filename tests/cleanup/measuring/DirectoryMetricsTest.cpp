#include "cleanup/measuring/DirectoryMetrics.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/FileFacts.h"
#include "tests/support/MountedFolder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace vantry::CleanupScanner {

namespace {

using namespace std::chrono_literals;

constexpr SystemTime older(1'500'000'000s + 1ns);
constexpr SystemTime newer(1'600'000'000s + 123'456'789ns);

} // namespace

TEST(DirectoryMetricsInProcess, OfAFolderAreTheSumOfItsFilesAndTheNewestDate) {
    const TemporaryFolder root;
    std::filesystem::create_directories(root / "a/.b");
    writeFile(root / "a/one", std::string(10'000, '1'));
    writeFile(root / "a/.b/two", "2");
    writeFile(root / "empty", "");
    std::filesystem::create_symlink("/etc/passwd", root / "link");
    setModified(root / "a/one", older);
    setModified(root / "a/.b/two", newer);
    setModified(root / "empty", older);
    // The dates of links and folders do not count.
    EXPECT_EQ(directoryMetricsInProcess(root.path(), deadlineIn(1min)),
              (DirectoryMetrics{.size = allocatedBytes(root / "a/one") + allocatedBytes(root / "a/.b/two"),
                                .newestModificationDate = newer,
                                .complete = true}));
}

TEST(DirectoryMetricsInProcess, OfAFileAreItsOwnAlsoWhenTimeIsUp) {
    const TemporaryFolder root;
    writeFile(root / "file", std::string(10'000, '1'));
    setModified(root / "file", newer);
    const DirectoryMetrics expected{
        .size = allocatedBytes(root / "file"), .newestModificationDate = newer, .complete = true};
    EXPECT_GE(expected.size, 10'000);
    EXPECT_EQ(directoryMetricsInProcess(root / "file", deadlineIn(1min)), expected);
    EXPECT_EQ(directoryMetricsInProcess(root / "file", std::chrono::steady_clock::now()), expected);
    EXPECT_EQ(directoryMetricsInProcess(root / "file", Deadline::min()), expected);
}

TEST(DirectoryMetricsInProcess, OfALinkOrAMissingItemAreNothing) {
    const TemporaryFolder root;
    writeFile(root / "file", "1");
    std::filesystem::create_symlink(root / "file", root / "link");
    std::filesystem::create_directory_symlink(root.path(), root / "linkToFolder");
    for (const char* name : {"link", "linkToFolder", "missing"}) {
        EXPECT_EQ(directoryMetricsInProcess(root / name, deadlineIn(1min)), DirectoryMetrics{}) << name;
        EXPECT_EQ(childrenMetricsInProcess(root / name, deadlineIn(1min)), ChildrenMetrics{}) << name;
    }
    EXPECT_EQ(childrenMetricsInProcess(root / "file", deadlineIn(1min)), ChildrenMetrics{});
}

TEST(DirectoryMetricsInProcess, AreNothingWhenTimeIsUp) {
    const TemporaryFolder root;
    std::filesystem::create_directory(root / "a");
    writeFile(root / "a/file", "1");
    for (const auto deadline : {std::chrono::steady_clock::now(), Deadline::min()}) {
        EXPECT_EQ(directoryMetricsInProcess(root.path(), deadline), DirectoryMetrics{});
        EXPECT_EQ(childrenMetricsInProcess(root.path(), deadline), ChildrenMetrics{});
    }
}

TEST(DirectoryMetricsInProcess, TakeAnyDeadline) {
    const TemporaryFolder root;
    EXPECT_EQ(directoryMetricsInProcess(root.path(), Deadline::max()), DirectoryMetrics{.complete = true});
}

TEST(ChildrenMetricsInProcess, AreThoseOfEachFolderAndOfTheWhole) {
    const TemporaryFolder root;
    std::filesystem::create_directories(root / "a/deeper");
    std::filesystem::create_directories(root / ".b");
    std::filesystem::create_directories(root / "empty");
    writeFile(root / "a/deeper/one", std::string(10'000, '1'));
    writeFile(root / ".b/two", std::string(20'000, '2'));
    writeFile(root / "three", std::string(30'000, '3'));
    setModified(root / "a/deeper/one", older);
    setModified(root / ".b/two", newer);
    setModified(root / "three", older);
    std::filesystem::create_directory_symlink(root / "a", root / "link");
    std::filesystem::create_symlink("nowhere", root / "dangling");
    ASSERT_EQ(mkfifo((root / "fifo").c_str(), 0600), 0);
    const auto metrics = childrenMetricsInProcess(root.path(), deadlineIn(1min));
    EXPECT_EQ(metrics.whole, directoryMetricsInProcess(root.path(), deadlineIn(1min)));
    const std::map<std::string, DirectoryMetrics> expected{
        {"a", {.size = allocatedBytes(root / "a/deeper/one"), .newestModificationDate = older, .complete = true}},
        {".b", {.size = allocatedBytes(root / ".b/two"), .newestModificationDate = newer, .complete = true}},
        {"empty", {.complete = true}}};
    EXPECT_EQ(metrics.children, expected);
}

TEST(ChildrenMetricsInProcess, IncludeEveryOneOfManyFolders) {
    const TemporaryFolder root;
    for (int i = 0; i < 300; ++i) {
        std::filesystem::create_directory(root / std::to_string(i));
        for (int file = 0; file <= i % 3; ++file)
            writeFile(root / std::to_string(i) / std::to_string(file), "1");
    }
    const auto metrics = childrenMetricsInProcess(root.path(), deadlineIn(1min));
    ASSERT_TRUE(metrics.whole.complete); // more than enough time for 600 files
    EXPECT_EQ(metrics.whole, directoryMetricsInProcess(root.path(), deadlineIn(1min)));
    ASSERT_EQ(metrics.children.size(), 300U);
    for (int i = 0; i < 300; ++i)
        EXPECT_EQ(metrics.children.at(std::to_string(i)).size, (1 + i % 3) * allocatedBytes(root / "0/0")) << i;
}

TEST(ChildrenMetricsInProcess, AreNotCompleteWithAChildThatCannotBeMeasured) {
    const TemporaryFolder root;
    // In whatever order they are listed, one that can be measured comes after the other one or before it.
    for (const char* name : {"a", "closed", "open"}) {
        std::filesystem::create_directory(root / name);
        writeFile(root / name / "file", "1");
        std::filesystem::permissions(root / name, std::filesystem::perms::all);
    }
    std::filesystem::permissions(root.path(), std::filesystem::perms::all);
    std::filesystem::permissions(root / "closed", std::filesystem::perms::none);
    const std::string said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no other user";
        // It may be late on a machine that is busy.
        ChildrenMetrics metrics;
        for (int attempt = 0; attempt < 20 && metrics.children.size() < 2; ++attempt)
            metrics = childrenMetricsInProcess(root.path(), deadlineIn(1min));
        return std::to_string(metrics.children.size()) + (metrics.whole.complete ? " complete" : " not complete") +
               (metrics.whole.size > 0 ? ", some" : ", none");
    });
    std::filesystem::permissions(root / "closed", std::filesystem::perms::owner_all);
    if (said == "no other user")
        GTEST_SKIP() << "no right to become another user";
    EXPECT_EQ(said, "2 not complete, some");
}

TEST(ChildrenMetricsInProcess, OfOneChildAreMeasuredWithoutAnotherThread) {
    const TemporaryFolder root;
    std::filesystem::create_directory(root / "a");
    writeFile(root / "a/file", "1");
    ChildrenMetrics metrics;
    for (int attempt = 0; attempt < 20 && !metrics.whole.complete; ++attempt)
        metrics = childrenMetricsInProcess(root.path(), deadlineIn(1min));
    EXPECT_TRUE(metrics.whole.complete);
    EXPECT_TRUE(metrics.children.contains("a"));
}

TEST(ChildrenMetricsInProcess, LeaveOutMountedFileSystems) {
    const TemporaryFolder root;
    const MountedFolder mounted(root / "mounted");
    if (!mounted)
        GTEST_SKIP() << "no right to mount a file system";
    writeFile(root / "mounted/file", std::string(10'000, '1'));
    std::filesystem::create_directory(root / "own");
    writeFile(root / "own/file", std::string(10'000, '1'));
    ChildrenMetrics metrics;
    for (int attempt = 0; attempt < 20 && !metrics.whole.complete; ++attempt)
        metrics = childrenMetricsInProcess(root.path(), deadlineIn(1min));
    EXPECT_TRUE(metrics.whole.complete);
    EXPECT_EQ(metrics.whole.size, allocatedBytes(root / "own/file"));
    EXPECT_EQ(metrics.children.size(), 1U);
}

} // namespace vantry::CleanupScanner
