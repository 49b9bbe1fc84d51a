#include "platform/ChildProcess.h"

#include "tests/platform/apple/OnDarwin.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/InterceptedCall.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/RefusedCall.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <poll.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace vantry {

namespace {

/// No test leaves a child or a descriptor behind.
class AppleChildProcess : public OnDarwin {
protected:
    void TearDown() override {
        waitUntilChildrenAre(0);
        EXPECT_FALSE(hasChildren());
        EXPECT_EQ(openDescriptorCount(), descriptorsBefore_);
        OnDarwin::TearDown();
    }

private:
    const std::ptrdiff_t descriptorsBefore_ = openDescriptorCount();
};

} // namespace

TEST_F(AppleChildProcess, ThatEndsBeforeItIsWatchedIsNoticed) {
    system.beforeWatching = [](pid_t pid) {
        siginfo_t ended = {};
        return waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT);
    };
    auto child = ChildProcess::start("/bin/sh", {"-c", "echo output; exit 7"}, ChildOutput::pipe);
    ASSERT_TRUE(child);
    pollfd ended{child->exitDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&ended, 1, 0), 1);
    EXPECT_EQ(endOf(*child), (EndedChild{7, "output\n"}));
}

TEST_F(AppleChildProcess, ThatCannotBeWatchedIsEnded) {
    system.beforeWatching = [](pid_t) { return ENOMEM; };
    const auto child = ChildProcess::start("/bin/sleep", {"600"}, ChildOutput::pipe);
    ASSERT_FALSE(child);
    EXPECT_EQ(child.error(), errorFromErrno(ENOMEM, "child exit"));
}

// Its number may already belong to another process.
TEST_F(AppleChildProcess, ThatWasReapedGetsNoSignal) {
    const std::string said = inChildProcess([]() -> std::string {
        if (!interceptCall(SYS_kill, [](int /*count*/) {}))
            return "not intercepted";
        auto child = ChildProcess::start("/bin/sleep", {"60"}, ChildOutput::nullDevice);
        if (!child)
            return child.error().message;
        child->sendSignal(SIGKILL);
        const auto ended = endOf(*child);
        child->sendSignal(SIGKILL);
        return "status " + std::to_string(ended.status) + ", signals: " + std::to_string(InterceptedCall::count);
    });
    if (said == "not intercepted")
        GTEST_SKIP() << "no calls are intercepted here";
    EXPECT_EQ(said, "status " + std::to_string(256 + SIGKILL) + ", signals: 1");
}

TEST_F(AppleChildProcess, IsNotStartedWhenItsWatchCannotBeSetUp) {
    const std::string said = inChildProcess([]() -> std::string {
        if (!refuseCall(SYS_fcntl, EPERM))
            return "not prepared";
        const auto child = ChildProcess::start("/bin/true", {}, ChildOutput::nullDevice);
        return child ? "started" : child.error().message;
    });
    EXPECT_EQ(said, errorFromErrno(EPERM, "child exit").message);
}

TEST_F(AppleChildProcess, MayBeTheRunningExecutableHoweverLongItsPath) {
    const auto file = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(ownExecutable(), file);
    for (const auto length : {std::size_t{PATH_MAX / 2}, std::size_t{2 * PATH_MAX}}) {
        std::string dots;
        while (dots.size() < length)
            dots += "./";
        system.executable = "/proc/self/" + dots + "exe";
        EXPECT_EQ(ownExecutable(), file) << length;
    }
    system.executable = "/no/such/program";
    EXPECT_EQ(ownExecutable().error().kind, ErrorKind::notFound);
}

} // namespace vantry
