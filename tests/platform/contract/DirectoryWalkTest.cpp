#include "tests/platform/contract/DirectoryWalkFixture.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/MountedFolder.h"

#include <set>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// Further away than nanoseconds of 64 bits reach.
bool holdsDate(const fs::path& item, std::int64_t seconds) {
    struct stat facts = {};
    return stat(item.c_str(), &facts) == 0 && facts.st_mtime == seconds;
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
