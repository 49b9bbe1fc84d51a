#include "platform/linux/LinkTargets.h"
#include "tests/platform/contract/ItemFactsFixture.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace vantry {

TEST_F(Items, AreReadableFilesWhenPermissionsLetThem) {
    chmod(folder.path().c_str(), 0755);
    const auto open = file("open");
    chmod(open.c_str(), 0644);
    const auto closed = file("closed");
    chmod(closed.c_str(), 0);
    std::filesystem::create_symlink("open", folder / "link");
    EXPECT_EQ(asNobody([&] { return isReadableFile(open); }), 1);
    EXPECT_EQ(asNobody([&] { return isReadableFile(folder / "link"); }), 1);
    EXPECT_EQ(asNobody([&] { return isReadableFile(closed); }), 0);
    EXPECT_FALSE(isReadableFile(folder.path()));
    EXPECT_FALSE(isReadableFile(folder / "nothing"));
}

TEST_F(Items, AreFoundWhereLinksLead) {
    const auto root = std::filesystem::canonical(folder.path());
    directory("real");
    std::filesystem::create_symlink("real", folder / "link");
    std::filesystem::create_symlink("../" + root.filename().native() + "/link", folder / "roundabout");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
    EXPECT_EQ(resolvedPath(folder / "link"), root / "real");
    EXPECT_EQ(resolvedPath(folder / "roundabout"), root / "real");
    EXPECT_EQ(resolvedPath(folder / "real"), root / "real");
    EXPECT_EQ(resolvedPath(folder / "dangling").error().kind, ErrorKind::notFound);
}

// The mount that such a root lies in is not in the kernel's list.
TEST_F(Items, ThatAreMissingAreNotFoundBelowAChangedRoot) {
    struct stat facts = {};
    ASSERT_EQ(stat(folder.path().c_str(), &facts), 0);
    if (major(facts.st_dev) == 0)
        GTEST_SKIP() << "needs temporary files on a disk";
    const std::string found = inChildProcess([&]() -> std::string {
        if (chroot(folder.path().c_str()) != 0)
            return "no other root";
        const auto missing = readItemFacts("/never looked up");
        return !missing && missing.error().kind == ErrorKind::notFound ? "not found" : "something else";
    });
    if (found == "no other root")
        GTEST_SKIP() << "has to be root";
    EXPECT_EQ(found, "not found");
}

} // namespace vantry
