#include "cleanup/finding/ScanEnvironment.h"

#include "tests/support/FileFacts.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace vantry {
namespace {

TEST(EnvironmentOfAScan, IsTheRealSystem) {
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_TRUE(environment);
    EXPECT_EQ(environment->places.applications, "/Applications");
    EXPECT_EQ(environment->places.systemApplications, "/System/Applications");
    EXPECT_FALSE(environment->workers.executable.empty());
    EXPECT_LT(std::chrono::abs(environment->now() - SystemTime(std::chrono::system_clock::now())),
              std::chrono::minutes(1));
}

TEST(EnvironmentOfAScan, FollowsTheLinksThatLeadToTheHomeFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "real/ada");
    std::filesystem::create_symlink(folder / "real", folder / "home");
    const ScopedEnvironment home("HOME", (folder / "home/ada").c_str());
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_TRUE(environment);
    EXPECT_EQ(environment->places.home, std::filesystem::canonical(folder / "real/ada"));
}

TEST(EnvironmentOfAScan, HasTheNamedDownloadFolderOfAHomeFolderThatALinkLeadsTo) {
    if (hostSystem() == HostSystem::macOS)
        GTEST_SKIP() << "has no list of the user's folders";
    const TemporaryFolder folder;
    const auto root = std::filesystem::canonical(folder.path());
    const auto real = root / "real";
    std::filesystem::create_directories(real / ".config");
    std::filesystem::create_directories(real / "Documents");
    std::filesystem::create_symlink(real, root / "ada");
    const ScopedEnvironment home("HOME", (root / "ada").c_str());
    const ScopedEnvironment configuration("XDG_CONFIG_HOME", nullptr);
    for (const auto& [named, expected] : {std::pair(std::string("$HOME/Loads"), real / "Loads"),
                                          {(root / "ada/Loads").native(), real / "Loads"},
                                          {(real / "Loads").native(), real / "Loads"},
                                          {(root / "disk").native(), root / "disk"},
                                          {"$HOME", real / "Downloads"},
                                          {real.native(), real / "Downloads"},
                                          {(real / "Documents").native(), real / "Downloads"}}) {
        writeFile(real / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"" + named + "\"\n");
        const auto places = CleanupPlaces::current();
        ASSERT_TRUE(places);
        EXPECT_EQ(places->home, real);
        EXPECT_EQ(places->downloads, expected) << named;
    }
}

TEST(EnvironmentOfAScan, IsAnErrorWithoutAHomeFolder) {
    const ScopedEnvironment home("HOME", "/nowhere");
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_FALSE(environment);
    EXPECT_EQ(environment.error().kind, ErrorKind::notFound);
}

} // namespace
} // namespace vantry
