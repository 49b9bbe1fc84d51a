#include "platform/FoundItem.h"

#include "tests/platform/contract/ItemFactsFixture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vantry {
namespace {

using Kind = ItemFacts::Kind;

TEST_F(Items, HaveAFingerprintOnlyIfWanted) {
    const auto path = file("file", 8192);
    const timespec wholeSecond[2] = {{1'600'000'000, 0}, {1'600'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), wholeSecond, 0), 0);
    std::vector<ItemFacts> seen;
    const auto found = [&](bool wanted) {
        return readFoundItem(path, [&](const ItemFacts& facts) {
            seen.push_back(facts);
            return wanted;
        });
    };
    const auto facts = readItemFacts(path).value();
    const auto unwanted = found(false);
    const auto wanted = found(true);
    ASSERT_TRUE(unwanted && wanted);
    EXPECT_EQ(*unwanted, (FoundItem{facts, {}}));
    EXPECT_EQ(wanted->facts, facts);
    EXPECT_EQ(wanted->fingerprint, readFileFingerprint(path));
    EXPECT_TRUE(wanted->fingerprint.resourceIdentifier);
    EXPECT_EQ(seen, (std::vector{facts, facts}));
    const auto missing = readFoundItem(folder / "missing", [](const auto&) { return true; });
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, ErrorKind::notFound);
}

TEST_F(Items, HaveTheirKindAndLinksAreNotFollowed) {
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
    EXPECT_EQ(readItemFacts(folder / "nothing").error().kind, ErrorKind::notFound);
    EXPECT_EQ(readItemFacts(folder / "file/inside").error().kind, ErrorKind::notFound);
    EXPECT_FALSE(readItemFacts(folder / std::string(300, 'x')));
    EXPECT_FALSE(readItemFacts(""));
}

TEST_F(Items, InAFolderWithoutPermissionAreNotReportedAsMissing) {
    chmod(folder.path().c_str(), 0755);
    const auto closed = directory("closed", 0600);
    EXPECT_EQ(asNobody([&] { return readItemFacts(closed / "item").error().kind; }),
              static_cast<int>(geteuid() == 0 ? ErrorKind::permissionDenied : ErrorKind::notFound));
}

TEST_F(Items, HaveTheirDateToTheNanosecond) {
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

TEST_F(Items, HaveTheirAllocatedSizeNotTheirLength) {
    EXPECT_EQ(readItemFacts(file("empty"))->allocatedBytes, 0);
    EXPECT_EQ(readItemFacts(file("reserved", 81920))->allocatedBytes, 81920);
    const auto sparse = file("sparse");
    std::filesystem::resize_file(sparse, 1'000'000'000);
    EXPECT_EQ(readItemFacts(sparse)->allocatedBytes, 0);
}

TEST_F(Items, ThroughALinkAreFolders) {
    std::filesystem::create_symlink(folder.path(), folder / "link");
    std::filesystem::create_symlink("link", folder / "link to link");
    std::filesystem::create_symlink(file("file"), folder / "link to file");
    std::filesystem::create_symlink(folder / "nowhere", folder / "dangling");
    std::filesystem::create_symlink("loop", folder / "loop");
    for (const auto& path : {folder.path(), folder / "link", folder / "link to link", folder / "link/link/link"})
        EXPECT_EQ(folderAccess(path), FolderAccess::readable) << path;
    for (const char* name : {"file", "link to file", "dangling", "nothing", "loop", "file/inside"})
        EXPECT_EQ(folderAccess(folder / name), FolderAccess::none) << name;
}

TEST_F(Items, AreReadableFoldersIfPermissionsAllow) {
    const TemporaryFolder inMemory(folderForManyFiles());
    for (const auto& parent : {folder.path(), inMemory.path()}) {
        chmod(parent.c_str(), 0755);
        for (const auto& [mode, access] :
             {std::pair{0755, FolderAccess::readable}, std::pair{0744, FolderAccess::readable},
              std::pair{0311, FolderAccess::unreadable}, std::pair{0, FolderAccess::unreadable}}) {
            const auto path = parent / std::to_string(mode);
            ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
            ASSERT_EQ(chmod(path.c_str(), static_cast<mode_t>(mode)), 0);
            EXPECT_EQ(accessOfNobody(path), access) << path;
        }
    }
}

TEST_F(Items, AreShownByTheirName) {
    EXPECT_EQ(displayName("/a/b c.app"), "b c.app");
    EXPECT_EQ(displayName("/a/b/"), "b");
    EXPECT_EQ(displayName("/a/\xff.log"), "\xef\xbf\xbd.log");
    EXPECT_EQ(displayName("/"), "");
}

} // namespace
} // namespace vantry
