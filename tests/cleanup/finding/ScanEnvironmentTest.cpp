#include "cleanup/finding/ScanEnvironment.h"

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <gtest/gtest.h>

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

TEST(EnvironmentOfAScan, IsAnErrorWithoutAHomeFolder) {
    const ScopedEnvironment home("HOME", "/nowhere");
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_FALSE(environment);
    EXPECT_EQ(environment.error().kind, ErrorKind::notFound);
}

} // namespace
} // namespace vantry
