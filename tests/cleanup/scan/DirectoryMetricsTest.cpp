#include "cleanup/scan/DirectoryMetrics.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace vantry::CleanupScanner {

namespace {

using namespace std::chrono_literals;

std::int64_t allocated(const std::filesystem::path& file) {
    struct stat facts = {};
    return lstat(file.c_str(), &facts) == 0 ? facts.st_blocks * 512 : -1;
}

void setModified(const std::filesystem::path& file, SystemTime time) {
    const auto count = time.time_since_epoch().count();
    const timespec times[] = {{0, UTIME_OMIT}, {count / 1'000'000'000, count % 1'000'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

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
    // Links and folders have dates of their own, which do not count.
    EXPECT_EQ(directoryMetricsInProcess(root.path(), deadlineIn(1min)),
              (DirectoryMetrics{.size = allocated(root / "a/one") + allocated(root / "a/.b/two"),
                                .newestModificationDate = newer,
                                .complete = true}));
}

TEST(DirectoryMetricsInProcess, OfAFileAreItsOwnAlsoWhenTimeIsUp) {
    const TemporaryFolder root;
    writeFile(root / "file", std::string(10'000, '1'));
    setModified(root / "file", newer);
    const DirectoryMetrics expected{
        .size = allocated(root / "file"), .newestModificationDate = newer, .complete = true};
    EXPECT_GE(expected.size, 10'000);
    EXPECT_EQ(directoryMetricsInProcess(root / "file", deadlineIn(1min)), expected);
    EXPECT_EQ(directoryMetricsInProcess(root / "file", std::chrono::steady_clock::now()), expected);
    EXPECT_EQ(directoryMetricsInProcess(root / "file", Deadline::min()), expected);
}

TEST(DirectoryMetricsInProcess, OfALinkAndOfWhatIsMissingAreNothing) {
    const TemporaryFolder root;
    writeFile(root / "file", "1");
    std::filesystem::create_symlink(root / "file", root / "link");
    std::filesystem::create_directory_symlink(root.path(), root / "linkToFolder");
    for (const char* name : {"link", "linkToFolder", "missing"})
        EXPECT_EQ(directoryMetricsInProcess(root / name, deadlineIn(1min)), DirectoryMetrics{}) << name;
}

TEST(DirectoryMetricsInProcess, AreNothingWhenTimeIsUp) {
    const TemporaryFolder root;
    writeFile(root / "file", "1");
    EXPECT_EQ(directoryMetricsInProcess(root.path(), std::chrono::steady_clock::now()), DirectoryMetrics{});
    EXPECT_EQ(directoryMetricsInProcess(root.path(), Deadline::min()), DirectoryMetrics{});
}

TEST(DirectoryMetricsInProcess, TakeAnyDeadline) {
    const TemporaryFolder root;
    EXPECT_EQ(directoryMetricsInProcess(root.path(), Deadline::max()), DirectoryMetrics{.complete = true});
}

} // namespace vantry::CleanupScanner
