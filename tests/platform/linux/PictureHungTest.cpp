// A picture in a file system that hangs: its worker survives SIGKILL.

#include "platform/linux/PictureWorker.h"
#include "tests/support/EndedChild.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace vantry {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

} // namespace

TEST(PictureInAHungFileSystem, IsNotWaitedForAndItsWorkerIsReapedLater) {
    const TemporaryFolder root;
    const fs::path control = root / "control";
    const fs::path point = root / "mount";
    fs::create_directory(control);
    fs::create_directory(point);
    if (mount("none", control.c_str(), "fusectl", 0, nullptr) != 0 || access("/dev/fuse", R_OK | W_OK) != 0)
        GTEST_SKIP() << "no right, or no way, to mount a file system of one's own";
    auto server = ChildProcess::start(OMBREL_HANGING_FILE_SYSTEM, {point, "getattr"}, ChildOutput::pipe);
    ASSERT_TRUE(server);
    pollfd event{server->output(), POLLIN, 0};
    std::array<char, 16> line{};
    ASSERT_TRUE(poll(&event, 1, 30'000) == 1 && read(server->output(), line.data(), line.size()) > 0);
    struct stat facts = {};
    ASSERT_EQ(stat(point.c_str(), &facts), 0);

    EXPECT_FALSE(readPictureInWorker(OMBREL_EXECUTABLE, point / "folder/a.png", 300ms));
    EXPECT_EQ(childCount(), 2);

    std::ofstream(control / std::to_string(minor(facts.st_dev)) / "abort") << '1';
    waitUntilChildrenAre(1);
    EXPECT_EQ(childCount(), 1);
    umount2(point.c_str(), MNT_DETACH);
    umount2(control.c_str(), MNT_DETACH);
    server->sendSignal(SIGKILL);
    static_cast<void>(endOf(*server));
    EXPECT_FALSE(hasChildren());
}

} // namespace vantry
