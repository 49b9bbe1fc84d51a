#include "platform/ItemFacts.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace vantry {

TEST(QuickItemKind, DoesNotFollowALink) {
    const TemporaryFolder root;
    writeFile(root / "file", "");
    std::filesystem::create_directory_symlink(root.path(), root / "link");
    std::filesystem::create_symlink("nowhere", root / "broken");
    ASSERT_EQ(mkfifo((root / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(quickItemKind(root / "file"), ItemKind::regularFile);
    EXPECT_EQ(quickItemKind(root.path()), ItemKind::folder);
    for (const char* name : {"link", "broken", "fifo"})
        EXPECT_EQ(quickItemKind(root / name), ItemKind::other) << name;
    EXPECT_EQ(quickItemKind("/dev/null"), ItemKind::other);
    for (const auto& path :
         {root / "missing", root / "file/below", root / std::string(300, 'n'), std::filesystem::path()})
        EXPECT_EQ(quickItemKind(path), ItemKind::none) << path;
}

} // namespace vantry
