#include "app/AppServices.h"
#include "app/LaunchAtLoginController.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeServices.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vantry {
namespace {

constexpr Rect frame{0, 0, 1000, 600};

// Lists one window of this process that covers the screen.
class OwnWindow : public WindowList {
public:
    [[nodiscard]] std::vector<WindowInfo> onScreenWindows() const override {
        return {{.ownerName = "Player", .ownerProcess = getpid(), .bounds = frame}};
    }
};

class TheAppServices : public testing::Test {
protected:
    [[nodiscard]] AppServices make(std::shared_ptr<const WindowList> windows) const {
        return makeAppServices(world.mainQueue, world.preferences, world.workspace, std::move(windows),
                               {"--show-cleanup"});
    }

    TemporaryFolder home;
    ScopedEnvironment homeVariable{"HOME", home.path().c_str()};
    ScopedEnvironment configurationVariable{"XDG_CONFIG_HOME", nullptr};
    FakeServices world;
};

TEST_F(TheAppServices, IncludeThoseOfTheFrontEnd) {
    const AppServices services = make(nullptr);
    EXPECT_EQ(services.mainQueue, world.mainQueue);
    EXPECT_EQ(services.preferences, world.preferences);
    EXPECT_EQ(services.workspace, world.workspace);
    EXPECT_EQ(services.arguments, std::vector<std::string>{"--show-cleanup"});
}

TEST_F(TheAppServices, AreTheRealOnesOtherwise) {
    const auto before = std::chrono::system_clock::now();
    const AppServices services = make(nullptr);
    EXPECT_TRUE(services.backgroundQueue);
    EXPECT_GE(services.now(), SystemTime(before));
    EXPECT_TRUE(services.readSystemVolume());
    EXPECT_EQ(services.makeCleanupServices().home, home.path());
}

TEST_F(TheAppServices, FindTheWallpaperThroughTheListOfWindows) {
    const auto film = home / "film.mov";
    writeFile(film, "1");
    const std::ifstream held(film);
    const Screen screen{.name = "Built-in", .frame = frame};
    EXPECT_EQ(make(std::make_shared<OwnWindow>()).wallpaper.currentWallpaperURL(screen), film);
}

TEST_F(TheAppServices, IdentifyAWallpaperByItsFile) {
    const auto picture = home / "lake.png";
    writeFile(picture, "1");
    EXPECT_TRUE(make(nullptr).wallpaper.identity(picture).starts_with(picture.native() + "|"));
}

TEST_F(TheAppServices, KeepTheLoginItemInTheHomeFolder) {
    const auto agent = home / "Library/LaunchAgents/app.ombrel.Ombrel.plist";
    const auto loginItem = make(nullptr).loginItem;
    EXPECT_TRUE(loginItem.refreshIfEnabled());
    EXPECT_FALSE(loginItem.isEnabled());
    EXPECT_TRUE(loginItem.setEnabled(true));
    EXPECT_TRUE(loginItem.isEnabled());
    const std::string written = readFile(agent);
    EXPECT_FALSE(written.empty());

    writeFile(agent, "of an application that has moved");
    EXPECT_TRUE(loginItem.refreshIfEnabled());
    EXPECT_EQ(readFile(agent), written);
    EXPECT_TRUE(loginItem.setEnabled(false));
    EXPECT_FALSE(std::filesystem::exists(agent));
}

TEST_F(TheAppServices, ExplainWhyAUserWithoutAHomeHasNoLoginItem) {
    const auto answer = inChildProcess([&]() -> std::string {
        if (unsetenv("HOME") != 0 || !becomeUser(unknownUser()))
            return "no other user";
        const auto loginItem = make(nullptr).loginItem;
        if (loginItem.isEnabled() || !loginItem.refreshIfEnabled())
            return "a login item";
        const auto refused = loginItem.setEnabled(true);
        return refused ? "enabled" : refused.error().message;
    });
    if (answer == "no other user")
        GTEST_SKIP() << "has to become another user";
    EXPECT_EQ(answer, "home folder: No such file or directory");
}

} // namespace
} // namespace vantry
