#pragma once

#include "platform/DirectoryWalk.h"
#include "tests/support/DeepTree.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace vantry {

[[nodiscard]] inline Deadline farAway() { return deadlineIn(std::chrono::minutes(2)); }

[[nodiscard]] inline TreeTotals walkTree(const std::filesystem::path& path, Deadline deadline, unsigned threads) {
    return vantry::walkTree(path, deadline, std::make_shared<SpareThreads>(std::max(threads, 1U) - 1));
}

/// The same, in the plainest way.
[[nodiscard]] inline TreeTotals naiveTotals(const std::filesystem::path& root) {
    TreeTotals totals{.complete = true};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        struct stat facts = {};
        if (lstat(entry.path().c_str(), &facts) != 0 || !S_ISREG(facts.st_mode))
            continue;
        totals.allocatedBytes += facts.st_blocks * 512;
        ++totals.regularFiles;
        totals.newestModification = std::max(
            totals.newestModification, std::optional(SystemTime(std::chrono::nanoseconds(modificationTime(facts)))));
    }
    return totals;
}

inline void setModified(const std::filesystem::path& item, std::int64_t seconds) {
    const timespec times[] = {{0, UTIME_OMIT}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, item.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

/// Folders in folders with files of some sizes; the same for the same `seed`. Gives back how many files it made.
inline int makeRandomTree(const std::filesystem::path& root, unsigned seed, int folders, int filesInEach) {
    std::mt19937 random(seed);
    std::vector<std::filesystem::path> made{root};
    int files = 0;
    for (int i = 0; i < folders; ++i) {
        const std::filesystem::path folder =
            made[random() % made.size()] / ((random() % 4 == 0 ? "." : "") + std::to_string(i));
        std::filesystem::create_directory(folder);
        made.push_back(folder);
        for (int k = 0; k < filesInEach; ++k, ++files)
            writeFile(folder / ((random() % 4 == 0 ? ".file " : "file ") + std::to_string(k)),
                      std::string(random() % 3 == 0 ? 0 : random() % 20'000, 'x'));
    }
    return files;
}

/// A folder with a tree in it, and one outside of it that must not be counted: its file is the newest of all.
class DirectoryWalk : public testing::Test {
protected:
    explicit DirectoryWalk(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
        : root(parent) {
        std::filesystem::create_directories(tree);
        std::filesystem::create_directories(outside);
        writeFile(outside / "file", std::string(1 << 20, 'x'));
        setModified(outside / "file", inTheYear2200);
    }

    ~DirectoryWalk() override { removeDeepTree(root.path()); }

    [[nodiscard]] TreeTotals walk(unsigned threads = 1) const { return walkTree(tree, farAway(), threads); }

    static constexpr std::int64_t inTheYear2200 = 7'258'118'400;

    const TemporaryFolder root;
    const std::filesystem::path tree = root / "tree";
    const std::filesystem::path outside = root / "outside";
};

class DirectoryWalkOfALargeTree : public DirectoryWalk {
protected:
    DirectoryWalkOfALargeTree() : DirectoryWalk(folderForManyFiles()) {}
};

} // namespace vantry
