#include "shell/qt/QtWorkspace.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vantry {

TEST(FileUri, HasTheBytesOfAPathAsTheyAre) {
    EXPECT_EQ(fileUri("/home/a b/c.dmg"), "file:///home/a%20b/c.dmg");
    EXPECT_EQ(fileUri("/\xFF\xFE#?%"), "file:///%FF%FE%23%3F%25");
    EXPECT_EQ(fileUri("/\xC3\xA4"), "file:///%C3%A4");
}

TEST(QtWorkspace, OnlyTheStoragePaneHasACounterpart) {
    const QtWorkspace workspace;
    EXPECT_TRUE(workspace.canOpenURL("x-apple.systempreferences:com.apple.settings.Storage"));
    EXPECT_FALSE(workspace.canOpenURL("x-apple.systempreferences:com.apple.Time-Machine-Settings.extension"));
}

TEST(QtWorkspace, OpensFoldersThatExist) {
    const TemporaryFolder folder;
    const QtWorkspace workspace;
    std::filesystem::create_directory(folder.path() / "Mail.app");
    std::ofstream(folder.path() / "file") << "no folder";
    EXPECT_TRUE(workspace.canOpenItem(folder.path()));
    EXPECT_FALSE(workspace.canOpenItem(folder.path() / "Downloads"));
    EXPECT_FALSE(workspace.canOpenItem(folder.path() / "file"));
    EXPECT_FALSE(workspace.canOpenItem(folder.path() / "Mail.app")) << "no folder is an application here";
}

} // namespace vantry
