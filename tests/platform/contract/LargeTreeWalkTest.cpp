#include "tests/platform/contract/DirectoryWalkFixture.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/OpenDescriptors.h"

#include <atomic>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <utility>

// Trees that are deep, wide, or change during the walk, and systems that run out of descriptors or threads.

namespace vantry {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// Sanitizers have a memory of their own.
#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
constexpr bool memoryIsMeasurable = false;
#else
constexpr bool memoryIsMeasurable = true;
#endif

/// Runs `attack` again and again, on a thread of its own, as long as this lives.
template <class Attack>
class Attacker {
public:
    explicit Attacker(Attack attack)
        : thread_([this, attack] {
              while (!done_)
                  attack();
          }) {}
    Attacker(const Attacker&) = delete;
    Attacker& operator=(const Attacker&) = delete;
    ~Attacker() {
        done_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> done_{false};
    std::thread thread_;
};

} // namespace

TEST_F(DirectoryWalkOfALargeTree, CountsAWideFolderOrIsIncomplete) {
    constexpr std::uint64_t count = 60'000;
    {
        const UniqueFd fd(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (std::uint64_t i = 0; i < count; ++i)
            makeFileIn(fd, "some file " + std::to_string(i));
    }
    for (const unsigned threads : {1U, 4U}) {
        const TreeTotals all = walk(threads);
        EXPECT_EQ(all.regularFiles, count);
        EXPECT_TRUE(all.complete);
        // The shortest time in which it finds anything is not enough for all.
        TreeTotals some;
        for (auto time = 250us; some.regularFiles == 0 && time < 1min; time *= 2)
            some = walkTree(tree, deadlineIn(time), threads);
        EXPECT_GT(some.regularFiles, 0U);
        EXPECT_LT(some.regularFiles, count);
        EXPECT_FALSE(some.complete);
        EXPECT_LE(some.allocatedBytes, all.allocatedBytes);
        EXPECT_LE(some.newestModification, all.newestModification);
    }
}

TEST_F(DirectoryWalkOfALargeTree, GoesTenThousandLevelsDeepWithFewDescriptors) {
    constexpr int depth = 10'000;
    {
        UniqueFd folder(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < depth; ++level) {
            makeFileIn(folder, "file");
            folder = makeFolderIn(folder, "d");
        }
    }
    for (const rlim_t descriptors : {1024U, 80U}) {
        const std::string said = inChildProcess([&] {
            const rlimit limit = {descriptors, descriptors};
            if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
                return std::string("no limit");
            const TreeTotals totals = walk();
            return std::to_string(totals.regularFiles) + (totals.complete ? " complete" : " not complete");
        });
        EXPECT_EQ(said, "10000 complete") << descriptors;
    }
    EXPECT_EQ(walk(4).regularFiles, 10'000U);
}

TEST_F(DirectoryWalkOfALargeTree, ReopensFoldersThatItClosedOnTheWayDown) {
    constexpr int depth = 10'000;
    {
        UniqueFd folder(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < depth; ++level) {
            // One before and one after the way down, in whichever order they are read.
            makeFileIn(makeFolderIn(folder, "a"), "file");
            UniqueFd below = makeFolderIn(folder, "d");
            makeFileIn(makeFolderIn(folder, "z"), "file");
            folder = std::move(below);
        }
    }
    const auto begin = std::chrono::steady_clock::now();
    for (const unsigned threads : {1U, 4U}) {
        const TreeTotals totals = walk(threads);
        EXPECT_EQ(totals.regularFiles, 20'000U);
        EXPECT_TRUE(totals.complete);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s); // from the root each time, it would be minutes
}

TEST_F(DirectoryWalk, ContinuesReadingInAReopenedFolder) {
    // The upper levels are a bit wider than what is read at a time, so that their rest waits until all below is done.
    constexpr int wideLevels = 12;
    constexpr int files = 500;
    constexpr int depth = 100;
    {
        UniqueFd folder(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const std::string suffix(245, 'n');
        for (int level = 0; level < depth; ++level) {
            for (int i = 0; i < files && level < wideLevels; ++i)
                ASSERT_EQ(
                    linkat(AT_FDCWD, (outside / "file").c_str(), folder.get(), (std::to_string(i) + suffix).c_str(), 0),
                    0);
            folder = makeFolderIn(folder, "d" + std::to_string(level)); // not in the same place in each
        }
    }
    for (const unsigned threads : {1U, 2U}) {
        const TreeTotals totals = walk(threads);
        EXPECT_EQ(totals.regularFiles, static_cast<std::uint64_t>(wideLevels) * files);
        EXPECT_TRUE(totals.complete);
    }
}

TEST_F(DirectoryWalkOfALargeTree, ContinuesReadingInAWideFolderThatIsReopenedManyTimes) {
    constexpr int files = 20'000;
    constexpr int chains = 20;
    constexpr int depth = 60;
    {
        const UniqueFd wide = makeFolderIn(UniqueFd(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), "wide");
        for (int i = 0; i < files; ++i) {
            makeFileIn(wide, "file " + std::to_string(i));
            if (i % 10 == 1) // more than are held before some are walked
                mkdirat(wide.get(), ("folder " + std::to_string(i)).c_str(), 0700);
            if (i % (files / chains) != 0)
                continue;
            UniqueFd folder = makeFolderIn(wide, "chain " + std::to_string(i));
            for (int level = 0; level < depth; ++level)
                folder = makeFolderIn(folder, "d");
            makeFileIn(folder, "file");
        }
    }
    for (const unsigned threads : {1U, 4U}) {
        const TreeTotals totals = walk(threads);
        EXPECT_EQ(totals.regularFiles, static_cast<std::uint64_t>(files + chains));
        EXPECT_TRUE(totals.complete);
    }
}

TEST_F(DirectoryWalkOfALargeTree, HoldsFewFoldersInMemoryWhenEachLevelIsWide) {
    constexpr int depth = 250;
    constexpr int width = 300;
    {
        UniqueFd folder(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < depth; ++level) {
            for (int i = 0; i < width; ++i)
                mkdirat(folder.get(), ("a folder with a long name " + std::to_string(i)).c_str(), 0700);
            makeFileIn(makeFolderIn(folder, "a folder with a long name 7"), "file");
            folder = makeFolderIn(folder, "a folder with a long name 0"); // in memory, what is read last
        }
    }
    for (const unsigned threads : {1U, 4U}) {
        const std::string said = inChildProcess([&] {
            const long before = peakMemory();
            const TreeTotals totals = walk(threads);
            const long more = peakMemory() - before;
            return std::to_string(totals.regularFiles) + (totals.complete ? " complete" : " not complete") +
                   (memoryIsMeasurable && more > 6 * 1024 ? " with " + std::to_string(more) + " KiB" : "");
        });
        EXPECT_EQ(said, "250 complete") << threads;
    }
}

TEST_F(DirectoryWalk, WalksDeeperThanTheLongestPath) {
    constexpr int depth = 100;
    {
        UniqueFd folder(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < depth; ++level)
            folder = makeFolderIn(folder, std::string(255, 'n'));
        makeFileIn(folder, std::string(255, 'f'));
    }
    EXPECT_EQ(walk().regularFiles, 1U);
    EXPECT_TRUE(walk().complete);
}

TEST_F(DirectoryWalkOfALargeTree, SeveralThreadsFindTheSameAsOne) {
    makeRandomTree(tree, 3, 400, 5);
    const fs::path wide = tree / "wide";
    fs::create_directory(wide);
    for (int i = 0; i < 6'000; ++i)
        fs::create_directory(wide / std::to_string(i));
    for (int i = 0; i < 3'000; ++i)
        writeFile(wide / ("file " + std::to_string(i)), "");
    const TreeTotals expected = naiveTotals(tree);
    EXPECT_EQ(expected.regularFiles, 5'000U);
    for (int round = 0; round < 6; ++round)
        for (const unsigned threads : {1U, 2U, 4U, 8U})
            ASSERT_EQ(walk(threads), expected) << threads;
}

TEST_F(DirectoryWalk, OneThreadDoesItWhenNoOtherCanBeStarted) {
    makeRandomTree(tree, 4, 100, 15);
    fs::permissions(root.path(), fs::perms::all);
    for (const auto& entry : fs::recursive_directory_iterator(root.path()))
        if (entry.is_directory() && !entry.is_symlink())
            fs::permissions(entry.path(), fs::perms::all);
    const TreeTotals expected = naiveTotals(tree);
    const std::string said = inChildProcess([&]() -> std::string {
        const rlimit one = {1, 1};
        if (!becomeUser(unknownUser()) || setrlimit(RLIMIT_NPROC, &one) != 0)
            return "no user";
        return walk(4) == expected ? "the same" : "something else";
    });
    if (said == "no user")
        GTEST_SKIP() << "no right to become another user";
    EXPECT_EQ(said, "the same");
}

TEST_F(DirectoryWalk, IsNotCompleteWithoutDescriptors) {
    makeRandomTree(tree, 5, 20, 2);
    const std::string said = inChildProcess([&]() -> std::string {
        const auto open = static_cast<rlim_t>(openDescriptorCount());
        const rlimit few = {open + 2, 64}; // the root, and one more
        if (setrlimit(RLIMIT_NOFILE, &few) != 0)
            return "no limit";
        const TreeTotals totals = walk();
        return totals.complete ? "complete" : totals.regularFiles < 40 ? "some" : "all";
    });
    EXPECT_EQ(said, "some");
}

TEST_F(DirectoryWalkOfALargeTree, LeavesNoDescriptorOpen) {
    makeRandomTree(tree, 6, 300, 10);
    const auto before = openDescriptorCount();
    for (int round = 0; round < 20; ++round) {
        EXPECT_TRUE(walk().complete);
        EXPECT_EQ(openDescriptorCount(), before);
        static_cast<void>(walkTree(tree, deadlineIn(1ms * round), 1));
        EXPECT_EQ(openDescriptorCount(), before);
        EXPECT_TRUE(walk(4).complete);
        static_cast<void>(walkTree(tree, deadlineIn(1ms * round), 4));
        // Threads that help end on their own.
        const auto patience = deadlineIn(30s);
        while (openDescriptorCount() != before && !hasPassed(patience))
            std::this_thread::yield();
        ASSERT_EQ(openDescriptorCount(), before);
    }
}

TEST_F(DirectoryWalk, FollowsNoLinkThatIsPlantedDuringTheWalk) {
    makeRandomTree(tree, 7, 30, 3);
    // Two levels change places with links that lead outside, all the time.
    fs::create_directories(tree / "level/folder");
    writeFile(tree / "level/folder/file", "1");
    writeFile(tree / "file", "1");
    fs::create_directory_symlink(outside, root / "link");
    fs::create_directory_symlink(outside, root / "deepLink");
    fs::create_symlink(outside / "file", root / "fileLink");
    fs::create_directory(outside / "folder");
    writeFile(outside / "folder/file", "1");
    setModified(outside / "folder/file", inTheYear2200);
    const UniqueFd level(open((tree / "level").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); // wherever it is
    std::atomic<int> changes{0};
    const auto change = [&](int at, const fs::path& one, const fs::path& other) {
        changes += exchange(at, one.c_str(), AT_FDCWD, other.c_str()) ? 1 : 0;
    };
    const Attacker attacker([&] {
        change(AT_FDCWD, tree / "level", root / "link");
        change(level.get(), "folder", root / "deepLink");
        change(AT_FDCWD, tree / "file", root / "fileLink");
    });
    const auto end = deadlineIn(1s);
    int rounds = 0;
    for (; !hasPassed(end) || (changes < 1000 && rounds < 1'000'000); ++rounds) {
        const TreeTotals totals = walk(rounds % 2 == 0 ? 1 : 4);
        ASSERT_LT(totals.newestModification, SystemTime(std::chrono::seconds(inTheYear2200)));
        ASSERT_LT(totals.allocatedBytes, 4 << 20);
        ASSERT_GE(totals.regularFiles, 90U);
        ASSERT_LE(totals.regularFiles, 92U);
        ASSERT_TRUE(totals.complete);
    }
    EXPECT_GE(changes, 1000);
}

TEST_F(DirectoryWalkOfALargeTree, DoesNotMistakeOneFolderForAnotherOnTheWayBack) {
    // From some level on, what is below changes places with what is below another folder, all the time. Whoever goes up
    // from there may arrive in that other folder, which must not be counted.
    constexpr int depth = 200;
    constexpr int exchanged = 20;
    const auto build = [](const fs::path& top, std::int64_t upperDate) {
        UniqueFd folder(open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        UniqueFd parent;
        for (int level = 0; level < depth; ++level) {
            UniqueFd below;
            for (const char* name : {"a", "d", "z"}) { // one before and one after the way down
                UniqueFd made = makeFolderIn(folder, name);
                if (std::string_view(name) == "d") {
                    below = std::move(made);
                    continue;
                }
                makeFileIn(made, "file");
                const timespec times[] = {{0, UTIME_OMIT}, {level < exchanged ? upperDate : 1, 0}};
                utimensat(made.get(), "file", times, 0);
            }
            if (level == exchanged - 1)
                parent = std::move(folder);
            folder = std::move(below);
        }
        return parent;
    };
    const UniqueFd one = build(tree, 1);
    const UniqueFd other = build(outside, inTheYear2200);
    std::atomic<int> exchanges{0};
    const Attacker attacker([&] { exchanges += exchange(one.get(), "d", other.get(), "d") ? 1 : 0; });
    const auto end = deadlineIn(1s);
    for (int rounds = 0; (!hasPassed(end) || exchanges < 1000) && rounds < 1'000'000; ++rounds) {
        const TreeTotals totals = walk(rounds % 2 == 0 ? 1 : 4);
        ASSERT_EQ(totals.newestModification, SystemTime(1s));
        if (totals.complete) {
            ASSERT_EQ(totals.regularFiles, 2U * depth);
        }
    }
    EXPECT_GE(exchanges, 1000);
}

} // namespace vantry
