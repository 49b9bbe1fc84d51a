#include "platform/DirectoryWalk.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/DeepTree.h"
#include "tests/support/MountedFolder.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

Deadline farAway() { return deadlineIn(2min); }

TreeTotals walkTree(const fs::path& path, Deadline deadline, unsigned threads) {
    return vantry::walkTree(path, deadline, std::make_shared<SpareThreads>(std::max(threads, 1U) - 1));
}

/// The same, in the plainest way.
TreeTotals naiveTotals(const fs::path& root) {
    TreeTotals totals{.complete = true};
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
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

// Sanitizers have a memory of their own.
#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
constexpr bool memoryIsMeasurable = false;
#else
constexpr bool memoryIsMeasurable = true;
#endif

// Further away than nanoseconds of 64 bits reach.
bool holdsDate(const fs::path& item, std::int64_t seconds) {
    struct stat facts = {};
    return stat(item.c_str(), &facts) == 0 && facts.st_mtime == seconds;
}

void setModified(const fs::path& item, std::int64_t seconds) {
    const timespec times[] = {{0, UTIME_OMIT}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, item.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

void makeSparseFile(const fs::path& file, off_t size) {
    writeFile(file, "1");
    fs::resize_file(file, static_cast<std::uintmax_t>(size));
}

void makeSocket(const fs::path& path) {
    const UniqueFd fd(socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

/// Folders in folders with files of some sizes; the same for the same `seed`. Gives back how many files it made.
int makeRandomTree(const fs::path& root, unsigned seed, int folders, int filesInEach) {
    std::mt19937 random(seed);
    std::vector<fs::path> made{root};
    int files = 0;
    for (int i = 0; i < folders; ++i) {
        const fs::path folder = made[random() % made.size()] / ((random() % 4 == 0 ? "." : "") + std::to_string(i));
        fs::create_directory(folder);
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
    explicit DirectoryWalk(const fs::path& parent = fs::temp_directory_path()) : root(parent) {
        fs::create_directories(tree);
        fs::create_directories(outside);
        writeFile(outside / "file", std::string(1 << 20, 'x'));
        setModified(outside / "file", inTheYear2200);
    }

    ~DirectoryWalk() override { removeDeepTree(root.path()); }

    [[nodiscard]] TreeTotals walk(unsigned threads = 1) const { return walkTree(tree, farAway(), threads); }

    static constexpr std::int64_t inTheYear2200 = 7'258'118'400;

    const TemporaryFolder root;
    const fs::path tree = root / "tree";
    const fs::path outside = root / "outside";
};

class DirectoryWalkOfALargeTree : public DirectoryWalk {
protected:
    DirectoryWalkOfALargeTree() : DirectoryWalk(folderForManyFiles()) {}
};

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

TEST_F(DirectoryWalk, CountsTheSameAsASimpleWalk) {
    EXPECT_EQ(makeRandomTree(tree, 1, 60, 5), 300);
    EXPECT_EQ(naiveTotals(tree).regularFiles, 300U);
    EXPECT_EQ(walk(), naiveTotals(tree));
    EXPECT_EQ(walk(4), naiveTotals(tree));
}

TEST_F(DirectoryWalk, CountsAllocatedBytesWhateverTheLength) {
    writeFile(tree / "empty", "");
    makeSparseFile(tree / "sparse", off_t{1} << 40);
    writeFile(tree / "large", std::string(1 << 20, 'x'));
    writeFile(tree / "one byte", "1");
    const TreeTotals totals = walk();
    EXPECT_EQ(totals, naiveTotals(tree));
    EXPECT_EQ(totals.regularFiles, 4U);
    EXPECT_GE(totals.allocatedBytes, 1 << 20);
    EXPECT_LT(totals.allocatedBytes, 4 << 20);
}

TEST_F(DirectoryWalk, CountsAFileOnceForEachOfItsNames) {
    writeFile(tree / "file", std::string(10'000, 'x'));
    const TreeTotals once = walk();
    fs::create_directory(tree / "folder");
    fs::create_hard_link(tree / "file", tree / "same");
    fs::create_hard_link(tree / "file", tree / "folder/same");
    const TreeTotals thrice = walk();
    EXPECT_EQ(thrice.regularFiles, 3U);
    EXPECT_EQ(thrice.allocatedBytes, 3 * once.allocatedBytes);
    EXPECT_EQ(thrice, naiveTotals(tree));
}

TEST_F(DirectoryWalk, CountsHiddenFiles) {
    fs::create_directories(tree / ".hidden/.deeper");
    writeFile(tree / ".hidden/.deeper/.file", "1");
    writeFile(tree / "...", "1");
    EXPECT_EQ(walk().regularFiles, 2U);
    EXPECT_EQ(walk(), naiveTotals(tree));
}

TEST_F(DirectoryWalk, NeitherFollowsNorCountsLinks) {
    fs::create_directories(tree / "a/b");
    for (const auto& folder : {tree, tree / "a", tree / "a/b"}) {
        fs::create_directory_symlink(outside, folder / "toFolder");
        fs::create_symlink(outside / "file", folder / "toFile");
        fs::create_symlink("nowhere", folder / "dangling");
        fs::create_symlink("itself", folder / "itself");
        fs::create_directory_symlink(tree, folder / "toRoot");
        fs::create_directory_symlink("..", folder / "up");
        fs::create_directory_symlink("/", folder / "all");
    }
    EXPECT_EQ(walk(), TreeTotals{.complete = true});
    writeFile(tree / "a/b/file", "1");
    EXPECT_EQ(walk(), naiveTotals(tree));
    EXPECT_EQ(walk().regularFiles, 1U);
}

TEST_F(DirectoryWalk, SkipsSpecialFiles) {
    ASSERT_EQ(mkfifo((tree / "fifo").c_str(), 0600), 0);
    makeSocket(tree / "socket");
    if (geteuid() == 0) { // nobody else may
        struct stat device = {};
        ASSERT_EQ(stat("/dev/null", &device), 0);
        mknod((tree / "null").c_str(), S_IFCHR | 0600, device.st_rdev);
        mknod((tree / "disk").c_str(), S_IFBLK | 0600, device.st_rdev);
    }
    EXPECT_EQ(walk(), TreeTotals{.complete = true});
}

TEST_F(DirectoryWalk, FindsTheNewestFileAndNoFolder) {
    fs::create_directories(tree / "a/b");
    writeFile(tree / "new", "");
    writeFile(tree / "a/newest", "");
    writeFile(tree / "a/b/old", "");
    setModified(tree / "new", 1'600'000'000);
    setModified(tree / "a/newest", 1'600'000'001);
    setModified(tree / "a/b/old", -1'000'000'000);
    setModified(tree / "a/b", 1'900'000'000);
    setModified(tree / "a", 1'900'000'000);
    EXPECT_EQ(walk().newestModification, SystemTime(1'600'000'001s));
    EXPECT_EQ(walkTree(tree / "a/b", farAway(), 1).newestModification, SystemTime(-1'000'000'000s));
}

TEST_F(DirectoryWalk, ClampsADateBeyondTheYear2262) {
    writeFile(tree / "file", "");
    setModified(tree / "file", 10'413'792'000); // 2300
    if (!holdsDate(tree / "file", 10'413'792'000))
        GTEST_SKIP() << "the file system of the temporary folder holds no such date";
    EXPECT_EQ(walk().newestModification, SystemTime::max());
}

TEST_F(DirectoryWalk, AnEmptyFolderIsCompleteAndEmpty) {
    EXPECT_EQ(walk(), TreeTotals{.complete = true});
    fs::create_directories(tree / "a/b/c");
    EXPECT_EQ(walk(4), TreeTotals{.complete = true});
}

TEST_F(DirectoryWalk, AFileIsMeasuredByItself) {
    const TreeTotals totals = walkTree(outside / "file", farAway(), 1);
    EXPECT_EQ(totals, naiveTotals(outside));
    EXPECT_EQ(totals.regularFiles, 1U);
    EXPECT_EQ(walkTree(outside / "file", Deadline::min(), 1), totals);
}

TEST_F(DirectoryWalk, AnythingElseIsEmptyAndIncomplete) {
    fs::create_directory_symlink(outside, root / "link");
    fs::create_symlink(outside / "file", root / "linkToFile");
    ASSERT_EQ(mkfifo((root / "fifo").c_str(), 0600), 0);
    for (const auto& item : {root / "link", root / "linkToFile", root / "missing", root / "fifo",
                             outside / "file/below", fs::path(), fs::path("/dev/null")})
        for (const unsigned threads : {1U, 4U})
            EXPECT_EQ(walkTree(item, farAway(), threads), TreeTotals{}) << item;
    EXPECT_EQ(walkTree(root / "link/.", farAway(), 1), naiveTotals(outside)); // no link at the end
}

TEST_F(DirectoryWalk, SkipsUnreadableFolders) {
    fs::create_directories(tree / "closed/inside");
    fs::create_directories(tree / "noSearch");
    fs::create_directories(tree / "open");
    writeFile(tree / "closed/inside/file", "1");
    writeFile(tree / "noSearch/file", "1");
    writeFile(tree / "open/file", "1");
    fs::permissions(root.path(), fs::perms::all);
    for (const auto& folder : {tree, tree / "open"})
        fs::permissions(folder, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(tree / "closed", fs::perms::owner_all);
    fs::permissions(tree / "noSearch", fs::perms::owner_all | fs::perms::others_read); // names, but no facts
    const auto asAnother = [&](const fs::path& folder) {
        return inChildProcess([&]() -> std::string {
            if (!becomeUser(unknownUser()))
                return "no user";
            const TreeTotals totals = walkTree(folder, farAway(), 1);
            return std::to_string(totals.regularFiles) + (totals.complete ? " complete" : " not complete");
        });
    };
    const std::string said = asAnother(tree);
    if (said == "no user" || geteuid() != 0)
        GTEST_SKIP() << "no right to become another user";
    EXPECT_EQ(said, "1 complete");
    EXPECT_EQ(asAnother(tree / "closed"), "0 not complete");
    EXPECT_EQ(walk().regularFiles, 3U);
}

TEST_F(DirectoryWalk, FindsNothingAfterTheDeadline) {
    writeFile(tree / "file", "1");
    for (const auto deadline : {std::chrono::steady_clock::now(), Deadline::min(), Deadline()})
        for (const unsigned threads : {1U, 4U})
            EXPECT_EQ(walkTree(tree, deadline, threads), TreeTotals{});
}

TEST_F(DirectoryWalk, AcceptsTheLargestDeadline) {
    makeRandomTree(tree, 2, 10, 300);
    for (const unsigned threads : {0U, 1U, 4U})
        EXPECT_EQ(walkTree(tree, Deadline::max(), threads), naiveTotals(tree));
}

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
    constexpr int files = 60'000;
    constexpr int chains = 40;
    constexpr int depth = 60;
    {
        const UniqueFd wide = makeFolderIn(UniqueFd(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), "wide");
        for (int i = 0; i < files; ++i) {
            makeFileIn(wide, "file " + std::to_string(i));
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

TEST(MountedFileSystem, InATreeIsNoPartOfIt) {
    const TemporaryFolder root;
    fs::create_directories(root / "tree/own");
    writeFile(root / "tree/own/file", std::string(10'000, '1'));
    const auto before = walkTree(root / "tree", farAway(), 1);
    const MountedFolder mounted(root / "tree/mounted");
    if (!mounted)
        GTEST_SKIP() << "no right to mount a file system";
    fs::create_directory(root / "tree/mounted/inside");
    writeFile(root / "tree/mounted/inside/file", std::string(10'000, '1'));
    const auto after = walkTree(root / "tree", farAway(), 1);
    const auto ofMount = walkTree(root / "tree/mounted", farAway(), 1);
    EXPECT_EQ(before.regularFiles, 1U);
    EXPECT_EQ(after, before);
    EXPECT_EQ(ofMount.regularFiles, 1U) << "a mounted file system is measured by itself";
    EXPECT_TRUE(isMountPoint(root / "tree/mounted"));
    EXPECT_FALSE(isMountPoint(root / "tree/own"));
    EXPECT_FALSE(isMountPoint(root / "missing"));
}

TEST(VisibleNames, DoNotBeginWithADot) {
    const TemporaryFolder root;
    std::set<std::string> expected = {"file", "folder", "link", "caf\xe9", "a\nb", std::string(255, 'n'), "-", "~"};
    writeFile(root / "file", "1");
    fs::create_directory(root / "folder");
    fs::create_symlink("nowhere", root / "link");
    for (const auto& name : {std::string("caf\xe9"), std::string("a\nb"), std::string(255, 'n'), std::string("-"),
                             std::string("~"), std::string(".hidden"), std::string("..."), std::string(".\xff")})
        writeFile(root / name, "1");
    const auto names = visibleNames(root.path());
    ASSERT_TRUE(names);
    EXPECT_EQ(std::set<std::string>(names->begin(), names->end()), expected);
    EXPECT_EQ(names->size(), expected.size());

    expected.insert({".hidden", "...", ".\xff"});
    const auto all = allNames(root.path());
    ASSERT_TRUE(all);
    EXPECT_EQ(std::set<std::string>(all->begin(), all->end()), expected);
    EXPECT_EQ(all->size(), expected.size());
}

TEST(VisibleNames, OfAWideFolderAreComplete) {
    const TemporaryFolder root(folderForManyFiles());
    for (int i = 0; i < 10'000; ++i)
        fs::create_directory(root / ("some folder " + std::to_string(i)));
    const auto names = visibleNames(root.path());
    ASSERT_TRUE(names);
    EXPECT_EQ(std::set<std::string>(names->begin(), names->end()).size(), 10'000U);
    EXPECT_EQ(names->size(), 10'000U);
}

TEST(VisibleNames, OfAnEmptyFolderAreNone) {
    const TemporaryFolder root;
    EXPECT_EQ(visibleNames(root.path()), std::vector<std::string>());
}

TEST(VisibleNames, FailForAnythingButAFolder) {
    const TemporaryFolder root;
    fs::create_directory(root / "folder");
    writeFile(root / "file", "1");
    fs::create_directory_symlink(root / "folder", root / "link");
    ASSERT_EQ(mkfifo((root / "fifo").c_str(), 0600), 0);
    for (const char* name : {"file", "link", "fifo"})
        EXPECT_FALSE(visibleNames(root / name)) << name;
    const auto names = visibleNames(root / "missing");
    ASSERT_FALSE(names);
    EXPECT_EQ(names.error().kind, ErrorKind::notFound);
}

} // namespace vantry
