#include "platform/SupervisedChild.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/EndedChild.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/RecordedPolls.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t plenty = 1 << 20;

/// No test leaves a child or a descriptor behind.
class ASupervisedChild : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_FALSE(hasChildren());
        EXPECT_EQ(openDescriptorCount(), descriptorsBefore_);
    }

    static SupervisedChild started(const std::string& script, std::shared_ptr<StopSwitch> stopSwitch = nullptr) {
        auto child = SupervisedChild::start("/bin/sh", {"-c", script}, ChildOutput::pipe, std::move(stopSwitch));
        EXPECT_TRUE(child);
        return std::move(*child);
    }
    /// Leaves it to be reaped.
    static void waitUntilOneHasEnded() {
        siginfo_t ended = {};
        ASSERT_EQ(waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT), 0);
    }
    [[nodiscard]] static Deadline farAway() { return deadlineIn(10min); }

    const TemporaryFolder root;

private:
    const std::ptrdiff_t descriptorsBefore_ = openDescriptorCount();
};

} // namespace

TEST_F(ASupervisedChild, IsReadLineByLine) {
    auto child = started("echo one; printf 'two\\nthree'; echo; echo; printf four");
    for (const char* line : {"one", "two", "three", ""})
        EXPECT_EQ(child.nextLine(plenty, farAway()), line);
    EXPECT_EQ(child.nextLine(plenty, farAway()), std::nullopt) << "a line has an end";
}

TEST_F(ASupervisedChild, IsReadUpToTheLimit) {
    auto child = started("exec cat /dev/zero");
    EXPECT_EQ(child.nextLine(100'000, farAway()), std::nullopt);
    EXPECT_EQ(started("exec cat /dev/zero").outputToEnd(100'000, farAway()), std::nullopt);
    // As much as the limit is not too much, even if the rest of the line or the end comes later.
    EXPECT_EQ(started("printf five; sleep 0.1; echo").nextLine(4, farAway()), "five");
    EXPECT_EQ(started("printf five; sleep 0.1").outputToEnd(4, farAway()), "five");
    EXPECT_EQ(started("printf five; sleep 0.1").outputToEnd(3, farAway()), std::nullopt);
}

TEST_F(ASupervisedChild, IsReadDespiteAnOldErrno) {
    for (const int old : {EINTR, EAGAIN, EIO}) {
        auto child = started("echo answer");
        waitUntilOneHasEnded();
        errno = old;
        EXPECT_EQ(child.outputToEnd(plenty, farAway()), "answer\n") << old;
    }
}

TEST_F(ASupervisedChild, IsReadAfterTheDeadlineOnlyIfItHasEnded) {
    const std::string written = root / "written";
    auto running = started("echo one; : > '" + written + "'; exec sleep 600");
    for (const auto patience = deadlineIn(30s); !std::filesystem::exists(written);) {
        ASSERT_FALSE(hasPassed(patience));
        std::this_thread::yield();
    }
    EXPECT_EQ(running.nextLine(plenty, deadlineIn(-1s)), std::nullopt);
    EXPECT_EQ(running.nextLine(plenty, farAway()), "one");
    auto ended = started("echo one; echo");
    waitUntilOneHasEnded();
    EXPECT_EQ(ended.nextLine(plenty, deadlineIn(-1s)), "one");
    EXPECT_EQ(ended.nextLine(plenty, deadlineIn(-1s)), "");
    auto shortest = started("echo");
    waitUntilOneHasEnded();
    EXPECT_EQ(shortest.nextLine(plenty, deadlineIn(-1s)), "");
}

TEST_F(ASupervisedChild, IsWaitedForAsleep) {
    const std::string end = root / "end";
    RecordedPolls::forget();
    std::thread ender([&] {
        for (const auto patience = deadlineIn(30s); RecordedPolls::count() == 0 && !hasPassed(patience);)
            std::this_thread::yield();
        writeFile(end, "");
    });
    auto child = started("while [ ! -e '" + end + "' ]; do sleep 0.01; done");
    EXPECT_EQ(child.outputToEnd(plenty, farAway()), "");
    ender.join();
    EXPECT_GT(RecordedPolls::count(), 0);
}

TEST_F(ASupervisedChild, IsWaitedForWithoutPollingAClosedOutput) {
    auto child = started("exec >&-; sleep 0.3");
    errno = EAGAIN;
    RecordedPolls::forget();
    EXPECT_EQ(child.outputToEnd(plenty, farAway()), "");
    EXPECT_LE(RecordedPolls::count(), 4);
}

TEST_F(ASupervisedChild, IsWaitedForAsleepWhateverBecameOfStandardInput) {
    EXPECT_EQ(inChildProcess([]() -> std::string {
                  std::array<int, 2> ends{};
                  if (pipe(ends.data()) != 0 || dup2(ends[0], STDIN_FILENO) < 0)
                      return "no pipe";
                  close(ends[1]); // so that it is hung up
                  RecordedPolls::forget();
                  static_cast<void>(started("sleep 0.3").outputToEnd(plenty, farAway()));
                  return RecordedPolls::count() <= 4 ? "asleep" : "busy";
              }),
              "asleep");
}

TEST_F(ASupervisedChild, IsEndedInBoundedTime) {
    int waitsForItsEnd = 0;
    for (const char* script : {"exec sleep 600", "trap '' TERM; while :; do sleep 600; done", "kill -STOP $$"}) {
        RecordedPolls::forget();
        std::optional child(started(script));
        EXPECT_EQ(child->outputToEnd(plenty, deadlineIn(100ms)), std::nullopt) << script;
        waitsForItsEnd -= RecordedPolls::count();
        child.reset();
        waitsForItsEnd += RecordedPolls::count();
        EXPECT_LE(RecordedPolls::waitedInVain(), 100ms + 2 * 120ms + 5ms) << script;
        EXPECT_FALSE(hasChildren()) << script;
    }
    EXPECT_GT(waitsForItsEnd, 0) << "asleep";
}

TEST_F(ASupervisedChild, GetsSigtermBeforeSigkill) {
    const std::string file = root / "asked";
    // It may be too slow on a machine that is busy.
    for (int attempt = 0; attempt < 20 && !std::filesystem::exists(file); ++attempt) {
        auto child = started("trap ': > " + file + "' TERM; echo ready; while :; do :; done");
        EXPECT_EQ(child.nextLine(plenty, farAway()), "ready");
    }
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(ASupervisedChild, ThatSurvivesBeingKilledIsReapedWhenItEnds) {
    const std::string end = root / "end";
    const std::string said = inChildProcess([&]() -> std::string {
        // As if it were stuck in a hung file system.
        if (!refuseCall(SYS_pidfd_send_signal, EPERM) || !refuseCall(SYS_kill, EPERM))
            return "no refusal";
        RecordedPolls::forget();
        static_cast<void>(
            started("while [ ! -e " + end + " ]; do sleep 0.01; done").outputToEnd(plenty, deadlineIn(10ms)));
        if (RecordedPolls::waitedInVain() > 10ms + 2 * 120ms + 5ms)
            return "waited too long";
        if (childCount() != 1)
            return "did not survive";
        writeFile(end, "");
        waitUntilChildrenAre(0);
        return childCount() == 0 ? "reaped" : "a zombie";
    });
    EXPECT_EQ(said, "reaped");
}

TEST_F(ASupervisedChild, IsEndedByTheSwitch) {
    const auto stopSwitch = StopSwitch::create().value();
    std::atomic<bool> runs = false;
    std::optional<std::string> output = "not read";
    std::thread reader([&] {
        auto child = started("echo first; exec sleep 600", stopSwitch);
        EXPECT_EQ(child.nextLine(plenty, farAway()), "first");
        runs = true;
        output = child.outputToEnd(plenty, farAway());
    });
    while (!runs)
        std::this_thread::yield();
    while (!stopSwitch->stop()) { // it may take longer on a machine that is busy
    }
    EXPECT_FALSE(hasChildren());
    reader.join();
    EXPECT_EQ(output, std::nullopt);
}

TEST_F(ASupervisedChild, IsNotStartedAfterTheSwitchWasStopped) {
    const auto stopSwitch = StopSwitch::create().value();
    EXPECT_EQ(started("echo one", stopSwitch).outputToEnd(plenty, farAway()), "one\n");
    EXPECT_FALSE(stopSwitch->isStopped());
    EXPECT_TRUE(stopSwitch->stop());
    EXPECT_TRUE(stopSwitch->stop());
    EXPECT_FALSE(
        SupervisedChild::start("/bin/sh", {"-c", ": > " + (root / "started").native()}, ChildOutput::pipe, stopSwitch));
    EXPECT_FALSE(std::filesystem::exists(root / "started"));
}

TEST(ProgramOutputWithoutTime, StartsNoProgram) {
    RecordedPolls::forget();
    EXPECT_EQ(programOutput("/bin/sh", {"-c", "echo one"}, plenty, Deadline::min()), std::nullopt);
    EXPECT_EQ(RecordedPolls::count(), 0) << "its end would be waited for";
}

TEST(StopSwitch, IsNotInherited) {
    std::vector<int> unused;
    for (int fd = 0; fd < 64; ++fd)
        if (fcntl(fd, F_GETFD) < 0)
            unused.push_back(fd);
    const auto stopSwitch = StopSwitch::create().value();
    for (const int fd : {unused.at(0), unused.at(1)}) // the ends of a pipe
        EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC);
}

TEST(StopSwitch, CannotBeMadeWithoutDescriptors) {
    EXPECT_EQ(inChildProcess([]() -> std::string {
                  const rlimit none = {0, 0};
                  if (setrlimit(RLIMIT_NOFILE, &none) != 0)
                      return "no limit";
                  return StopSwitch::create() ? "made" : "not made";
              }),
              "not made");
}

TEST(StopSwitch, WaitsNoLongerThanTheWorkTakes) {
    auto shortest = std::chrono::nanoseconds::max();
    for (int attempt = 0; attempt < 10 && shortest > 400ms; ++attempt) { // it may take longer on a machine that is busy
        const auto stopSwitch = StopSwitch::create().value();
        auto work = StopSwitch::beginWork(stopSwitch);
        ASSERT_TRUE(work);
        std::thread ender([&] {
            std::this_thread::sleep_for(50ms);
            work->reset();
        });
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_TRUE(stopSwitch->stop());
        shortest = std::min<std::chrono::nanoseconds>(shortest, std::chrono::steady_clock::now() - begin);
        ender.join();
    }
    EXPECT_LT(shortest, 400ms);
}

TEST(StopSwitch, WaitsForWorkButNotForever) {
    const auto stopSwitch = StopSwitch::create().value();
    auto one = StopSwitch::beginWork(stopSwitch);
    auto other = StopSwitch::beginWork(stopSwitch);
    ASSERT_TRUE(one && other);
    one->reset();
    EXPECT_FALSE(stopSwitch->stop());
    EXPECT_FALSE(StopSwitch::beginWork(stopSwitch));
    other->reset();
    EXPECT_TRUE(stopSwitch->stop());
    EXPECT_TRUE(StopSwitch::beginWork(nullptr)) << "nothing stops work without a switch";
}

} // namespace vantry
