#include "cleanup/scan/ScanEnvironment.h"

#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>

namespace vantry {
namespace {

class EnvironmentOfAScan : public testing::Test {
protected:
    EnvironmentOfAScan() {
        if (const char* home = std::getenv("HOME"))
            before_ = home;
    }
    ~EnvironmentOfAScan() override {
        if (before_)
            setenv("HOME", before_->c_str(), 1);
        else
            unsetenv("HOME");
    }
    TemporaryFolder folder;

private:
    std::optional<std::string> before_;
};

TEST_F(EnvironmentOfAScan, IsTheRealSystem) {
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_TRUE(environment);
    EXPECT_EQ(environment->applications, "/Applications");
    EXPECT_EQ(environment->systemApplications, "/System/Applications");
    EXPECT_FALSE(environment->workers.executable.empty());
    EXPECT_LT(std::chrono::abs(environment->now() - SystemTime(std::chrono::system_clock::now())),
              std::chrono::minutes(1));
}

TEST_F(EnvironmentOfAScan, FollowsTheLinksThatLeadToTheHomeFolder) {
    std::filesystem::create_directories(folder / "real/ada");
    std::filesystem::create_symlink(folder / "real", folder / "home");
    setenv("HOME", (folder / "home/ada").c_str(), 1);
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_TRUE(environment);
    EXPECT_EQ(environment->home, std::filesystem::canonical(folder / "real/ada"));
}

TEST_F(EnvironmentOfAScan, IsAnErrorWithoutAHomeFolder) {
    setenv("HOME", (folder / "nowhere").c_str(), 1);
    const auto environment = ScanEnvironment::current(nullptr, nullptr);
    ASSERT_FALSE(environment);
    EXPECT_EQ(environment.error().kind, ErrorKind::notFound);
}

} // namespace
} // namespace vantry
