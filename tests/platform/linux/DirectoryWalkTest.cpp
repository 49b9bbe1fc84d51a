#include "platform/DirectoryWalk.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/InterceptedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

Deadline farAway() { return deadlineIn(std::chrono::minutes(2)); }

} // namespace

TEST(DirectoryWalkOnLinux, SharesFoldersAndFilesWithOtherThreads) {
    const TemporaryFolder tree(folderForManyFiles());
    const fs::path wide = tree / "wide";
    const fs::path branched = tree / "branched";
    for (int i = 0; i < 6'000; ++i) {
        const fs::path folder = i < 3'000 ? wide : branched / std::to_string(i % 100);
        fs::create_directories(folder);
        writeFile(folder / std::to_string(i), "");
    }
    for (const auto& folder : {wide, branched}) {
        const std::string said = inChildProcess([&]() -> std::string {
            std::atomic<int> byHelpers = 0;
            // The first thread takes its time until another one has looked at a file.
            const bool isIntercepted = interceptCall(SYS_statx, [&](int count) {
                if (gettid() != getpid())
                    ++byHelpers;
                else if (count > 1'000 && byHelpers == 0)
                    usleep(2'000);
            });
            if (!isIntercepted)
                return "not possible";
            const TreeTotals totals = walkTree(folder, farAway(), std::make_shared<SpareThreads>(1));
            return totals.regularFiles != 3'000 ? "not all" : byHelpers > 0 ? "shared" : "alone";
        });
        if (said == "not possible")
            GTEST_SKIP() << "system calls cannot be intercepted here";
        EXPECT_EQ(said, "shared") << folder;
    }
}

TEST(MountedFile, IsNoPartOfATree) {
    const TemporaryFolder root;
    fs::create_directory(root / "tree");
    writeFile(root / "tree/file", "");
    writeFile(root / "tree/hidden", "below a mounted file");
    writeFile(root / "other", std::string(10'000, '1'));
    if (mount((root / "other").c_str(), (root / "tree/hidden").c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "no right to mount a file";
    const auto totals = walkTree(root / "tree", farAway(), std::make_shared<SpareThreads>(0));
    const bool told[] = {isMountPoint(root / "tree/hidden"), isMountPoint(root / "tree/file")};
    umount2((root / "tree/hidden").c_str(), MNT_DETACH);
    EXPECT_EQ(totals.regularFiles, 1U);
    EXPECT_TRUE(totals.complete);
    EXPECT_TRUE(told[0]);
    EXPECT_FALSE(told[1]);
}

} // namespace vantry
