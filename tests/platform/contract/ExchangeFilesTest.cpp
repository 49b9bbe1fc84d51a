#include "platform/ExchangeFiles.h"

#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>

namespace vantry {
namespace {

TEST(ExchangeFiles, TheNamesOfTwoFilesAreExchanged) {
    const TemporaryFolder folder;
    writeFile(folder / "one", "1");
    writeFile(folder / "other", "2");
    EXPECT_EQ(exchangeFiles(folder / "one", folder / "other"), 0);
    EXPECT_EQ(readFile(folder / "one"), "2");
    EXPECT_EQ(readFile(folder / "other"), "1");
}

TEST(ExchangeFiles, AMissingFileIsAnErrorAndTheOtherStays) {
    const TemporaryFolder folder;
    writeFile(folder / "one", "1");
    EXPECT_EQ(exchangeFiles(folder / "one", folder / "other"), ENOENT);
    EXPECT_EQ(exchangeFiles(folder / "other", folder / "one"), ENOENT);
    EXPECT_EQ(readFile(folder / "one"), "1");
    EXPECT_FALSE(std::filesystem::exists(folder / "other"));
}

TEST(ExchangeFiles, ALinkIsExchangedAndNotFollowed) {
    const TemporaryFolder folder;
    writeFile(folder / "one", "1");
    writeFile(folder / "target", "target");
    std::filesystem::create_symlink(folder / "target", folder / "link");
    EXPECT_EQ(exchangeFiles(folder / "one", folder / "link"), 0);
    EXPECT_EQ(std::filesystem::read_symlink(folder / "one"), folder / "target");
    EXPECT_EQ(readFile(folder / "link"), "1");
    EXPECT_EQ(readFile(folder / "target"), "target");
}

} // namespace
} // namespace vantry
