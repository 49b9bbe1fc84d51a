#include "platform/linux/LinkTargets.h"
#include "tests/platform/contract/ItemFactsFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

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

} // namespace vantry
