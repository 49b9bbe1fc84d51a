#include "platform/ChildProcess.h"

#include "base/Deadline.h"
#include "tests/platform/contract/ChildProcessFixture.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <string>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;

constexpr const char* shell = "/bin/sh";

std::vector<std::string> script(const std::string& text) { return {"-c", text}; }

std::vector<std::string> untilThereIs(const fs::path& file) {
    const std::string folder = file.parent_path().native(); // of a test, which may have failed
    return script("while [ ! -e '" + file.native() + "' ] && [ -d '" + folder + "' ]; do sleep 0.01; done");
}

} // namespace

TEST_F(AChildProcess, ReturnsItsExitStatus) {
    for (const int status : {0, 1, 77, 255})
        EXPECT_EQ(endOf(shell, script("exit " + std::to_string(status))).status, status);
    for (const int signal : {SIGTERM, SIGKILL, SIGABRT})
        EXPECT_EQ(endOf(shell, script("kill -" + std::to_string(signal) + " $$")).status, 256 + signal);
}

TEST_F(AChildProcess, GetsItsArgumentsUnchanged) {
    EXPECT_EQ(endOf("/bin/echo", {"a b", "", "$HOME", "caf\xe9", "\"'\n"}),
              (EndedChild{0, "a b  $HOME caf\xe9 \"'\n\n"}));
    EXPECT_EQ(endOf("/bin/echo", {std::string(100'000, 'x')}).output.size(), 100'001U);
}

TEST_F(AChildProcess, ReadsNothingAndWritesErrorsNowhere) {
    EXPECT_EQ(endOf("/bin/cat", {}), (EndedChild{0, ""}));
    EXPECT_EQ(endOf(shell, script("echo error >&2 && echo output")), (EndedChild{0, "output\n"}));
}

TEST_F(AChildProcess, WithoutAPipeWritesNowhere) {
    const TemporaryFolder root;
    const auto said = inChildProcess([&]() -> std::string {
        const UniqueFd printed(open((root / "printed").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        if (dup2(printed.get(), STDOUT_FILENO) < 0)
            return "not prepared";
        auto child = ChildProcess::start("/bin/echo", {"output"}, ChildOutput::nullDevice);
        if (!child || child->output() != -1 || endOf(*child) != EndedChild{0, ""})
            return "not run";
        return readFile(root / "printed");
    });
    EXPECT_EQ(said, "");
}

TEST_F(AChildProcess, InheritsTheEnvironmentAndNoDescriptor) {
    const ScopedEnvironment variable("OMBREL_TEST_VARIABLE", "a value");
    constexpr int number = 77;
    const UniqueFd inheritable(dup2(STDIN_FILENO, number));
    ASSERT_EQ(inheritable.get(), number);
    EXPECT_EQ(endOf(shell, script("echo \"$OMBREL_TEST_VARIABLE\"; [ ! -e /dev/fd/77 ] || echo inherited")),
              (EndedChild{0, "a value\n"}));
}

TEST_F(AChildProcess, StartsWithNoSignalBlockedOrIgnored) {
    const auto handler = std::signal(SIGUSR1, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const int statuses[] = {endOf(shell, script("kill -USR1 $$")).status, endOf(shell, script("kill -USR2 $$")).status};
    sigprocmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGUSR1, handler);
    EXPECT_EQ(statuses[0], 256 + SIGUSR1);
    EXPECT_EQ(statuses[1], 256 + SIGUSR2);
}

TEST_F(AChildProcess, HasNoStatusBeforeItEnds) {
    auto child = ChildProcess::start("/bin/sleep", {"60"}, ChildOutput::pipe);
    ASSERT_TRUE(child);
    for (const int fd : {child->output(), child->exitDescriptor()})
        EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(child->exitStatus(), std::nullopt);
    char byte = 0;
    EXPECT_EQ(read(child->output(), &byte, 1), -1);
    EXPECT_EQ(errno, EAGAIN); // nobody waits for what it writes
    pollfd ended{child->exitDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&ended, 1, 0), 0);
    child->sendSignal(0);
    EXPECT_EQ(child->exitStatus(), std::nullopt);
    child->sendSignal(SIGTERM);
    EXPECT_EQ(poll(&ended, 1, 30'000), 1);
    EXPECT_TRUE(hasChildren()); // ended, and not seen to have
    EXPECT_EQ(child->exitStatus(), 256 + SIGTERM);
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(child->exitStatus(), 256 + SIGTERM);
    child->sendSignal(SIGKILL);
    EXPECT_EQ(child->exitStatus(), 256 + SIGTERM);
}

TEST_F(AChildProcess, ThatSomebodyElseReapedCountsAsFailed) {
    auto child = ChildProcess::start("/bin/true", {}, ChildOutput::nullDevice);
    ASSERT_TRUE(child);
    ASSERT_GT(waitpid(-1, nullptr, 0), 0);
    EXPECT_EQ(child->exitStatus(), 256);
    EXPECT_EQ(child->exitStatus(), 256);
    child->sendSignal(SIGKILL);
}

TEST_F(AChildProcess, HasNoStatusWhenSigchldIsIgnored) {
    const auto handler = std::signal(SIGCHLD, SIG_IGN);
    for (const char* seconds : {"0.2", "0", "0", "0", "0", "0", "0", "0", "0"}) {
        auto child = ChildProcess::start("/bin/sleep", {seconds}, ChildOutput::nullDevice);
        if (!child) { // it was gone before it could be watched
            EXPECT_EQ(child.error(), errorFromErrno(ESRCH, "child exit"));
            continue;
        }
        // The kernel lets go of it by itself, a moment after its end.
        const auto patience = deadlineIn(std::chrono::seconds(30));
        while (!child->exitStatus() && !hasPassed(patience))
            std::this_thread::yield();
        EXPECT_EQ(child->exitStatus(), 256);
    }
    std::signal(SIGCHLD, handler);
}

TEST_F(AChildProcess, CanBeMoved) {
    auto child = ChildProcess::start("/bin/echo", {"output"}, ChildOutput::pipe);
    ASSERT_TRUE(child);
    ChildProcess moved(std::move(*child));
    *child = std::move(moved);
    EXPECT_EQ(endOf(*child), (EndedChild{0, "output\n"}));
}

TEST_F(AChildProcess, ThatNobodyWatchesIsReapedWhenItEnds) {
    const TemporaryFolder root;
    {
        const auto child = ChildProcess::start(shell, untilThereIs(root / "end"), ChildOutput::pipe);
        ASSERT_TRUE(child);
    }
    EXPECT_EQ(childCount(), 1);
    sigset_t blocked = {};
    EXPECT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &blocked), 0);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD})
        EXPECT_EQ(sigismember(&blocked, signal), 0) << "this thread goes on to receive signals";
    writeFile(root / "end", "");
    waitUntilChildrenAre(0);
}

TEST_F(AChildProcess, ThatIsReplacedIsReapedWhenItEnds) {
    auto child = ChildProcess::start("/bin/true", {}, ChildOutput::nullDevice);
    auto other = ChildProcess::start(shell, script("exit 3"), ChildOutput::nullDevice);
    ASSERT_TRUE(child && other);
    *child = std::move(*other);
    EXPECT_EQ(endOf(*child), (EndedChild{3, ""}));
    waitUntilChildrenAre(0);
}

TEST_F(AChildProcess, TheThreadThatReapsItBlocksSignals) {
    const TemporaryFolder root;
    {
        const auto child = ChildProcess::start(shell, untilThereIs(root / "end"), ChildOutput::pipe);
        ASSERT_TRUE(child);
    }
    // What the threads beside this one block, once they wait: a thread starts with all signals blocked.
    std::vector<std::string> blocked;
    const auto patience = deadlineIn(std::chrono::seconds(30));
    while (blocked.empty() && !hasPassed(patience))
        for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
            std::ifstream status(thread.path() / "status");
            bool isWaiting = false;
            for (std::string line; std::getline(status, line);) {
                isWaiting = isWaiting || line.starts_with("State:\tS");
                if (line.starts_with("SigBlk:") && isWaiting && thread.path().filename() != std::to_string(getpid()))
                    blocked.push_back(line.substr(line.size() - 16));
            }
        }
    writeFile(root / "end", "");
    waitUntilChildrenAre(0);
    ASSERT_FALSE(blocked.empty());
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        EXPECT_NE(std::stoull(blocked.back(), nullptr, 16) >> (signal - 1) & 1U, 0U) << signal;
}

// The kernel then reaps the child, and waitpid fails with ECHILD.
TEST_F(AChildProcess, TheThreadThatReapsItEndsEvenIfSigchldIsIgnored) {
    const TemporaryFolder root;
    const std::string said = inChildProcess([&]() -> std::string {
        std::signal(SIGCHLD, SIG_IGN);
        const auto threads = [] { return std::distance(fs::directory_iterator("/proc/self/task"), {}); };
        const auto before = threads();
        const bool started =
            ChildProcess::start(shell, untilThereIs(root / "end"), ChildOutput::nullDevice).has_value();
        const auto meanwhile = threads(); // with one of the thread sanitizer's own
        if (!started || meanwhile == before)
            return "no thread waits";
        writeFile(root / "end", "");
        const auto patience = deadlineIn(std::chrono::seconds(30));
        while (threads() == meanwhile && !hasPassed(patience))
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return threads() == meanwhile ? "it still runs" : "it ended";
    });
    EXPECT_EQ(said, "it ended");
}

TEST_F(AChildProcess, GetsItsStreamsEvenIfTheParentHasNone) {
    const std::string said = inChildProcess([]() -> std::string {
        // Each of the three missing, alone and with others: the pipe then gets their numbers.
        std::string wrong;
        const UniqueFd kept[] = {UniqueFd(fcntl(0, F_DUPFD_CLOEXEC, 10)), UniqueFd(fcntl(1, F_DUPFD_CLOEXEC, 10)),
                                 UniqueFd(fcntl(2, F_DUPFD_CLOEXEC, 10))};
        for (int missing = 1; missing < 8; ++missing) {
            for (int fd = 0; fd < 3; ++fd)
                if ((missing >> fd & 1) != 0)
                    close(fd);
            const auto ended = endOf(shell, script("readlink /proc/$$/fd/0 /proc/$$/fd/2"));
            for (int fd = 0; fd < 3; ++fd)
                dup2(kept[fd].get(), fd);
            if (ended != EndedChild{0, "/dev/null\n/dev/null\n"})
                wrong += std::to_string(missing) + ": " + ended.output;
        }
        return wrong.empty() ? "all right" : wrong;
    });
    EXPECT_EQ(said, "all right");
}

TEST_F(AChildProcess, IsNotStartedFromAnythingButAProgram) {
    const TemporaryFolder root;
    writeFile(root / "text", "some text");
    writeFile(root / "broken", "#!/nowhere/interpreter\n");
    writeFile(root / "mode", "#!/bin/sh\n");
    fs::permissions(root / "text", fs::perms::owner_all);
    fs::permissions(root / "broken", fs::perms::owner_all);
    const struct {
        fs::path program;
        ErrorKind kind;
    } cases[] = {
        {"/nowhere/program", ErrorKind::notFound},
        {root / "missing", ErrorKind::notFound},
        {"", ErrorKind::notFound},
        {root / "broken", ErrorKind::notFound},
        {root / "mode", ErrorKind::permissionDenied},
        {root.path(), ErrorKind::permissionDenied},
        {root / "text", ErrorKind::system},
        {root / "text/below", ErrorKind::notFound},
        {"true", ErrorKind::notFound}, // not looked for in $PATH
    };
    for (const auto& [program, kind] : cases)
        for (const auto output : {ChildOutput::pipe, ChildOutput::nullDevice}) {
            const auto child = ChildProcess::start(program, {}, output);
            ASSERT_FALSE(child) << program;
            EXPECT_EQ(child.error().kind, kind) << child.error().message;
        }
}

TEST_F(AChildProcess, IsNotStartedWithTooManyArguments) {
    const auto child = ChildProcess::start("/bin/true", {std::string(4 << 20, 'x')}, ChildOutput::pipe);
    ASSERT_FALSE(child);
    EXPECT_EQ(child.error(), errorFromErrno(E2BIG, "/bin/true"));
}

TEST_F(AChildProcess, CannotBeStartedWithoutDescriptors) {
    const std::string said = inChildProcess([]() -> std::string {
        const rlimit few = {static_cast<rlim_t>(openDescriptorCount()) + 16, 64};
        if (setrlimit(RLIMIT_NOFILE, &few) != 0)
            return "no limit";
        std::vector<UniqueFd> all;
        for (UniqueFd fd(dup(0)); fd; fd = UniqueFd(dup(0)))
            all.push_back(std::move(fd));
        // With none left, with one, with two and so on, until there are enough.
        for (int failures = 0; !all.empty(); all.pop_back(), ++failures) {
            auto child = ChildProcess::start("/bin/true", {}, ChildOutput::pipe);
            if (child)
                return endOf(*child).status == 0 ? "started after " + std::to_string(failures) : "ended badly";
            if (hasChildren())
                return "a child is left";
            if (child.error() != errorFromErrno(EMFILE, "pipe") &&
                child.error() != errorFromErrno(EMFILE, "child exit"))
                return child.error().message;
        }
        return "never started";
    });
    EXPECT_EQ(said, "started after 3"); // two for the pipe, one to see its end
}

TEST_F(AChildProcess, CannotBeStartedWhereDescriptorsCannotBeSetUp) {
    const std::string said = inChildProcess([]() -> std::string {
        const auto nextDescriptor = [] { return UniqueFd(dup(STDIN_FILENO)).get(); };
        const int before = nextDescriptor();
        if (!refuseCall(SYS_fcntl, EPERM))
            return "not prepared";
        const auto child = ChildProcess::start("/bin/true", {}, ChildOutput::pipe);
        return (child ? "started" : child.error().message) + (nextDescriptor() != before ? ", a descriptor left" : "");
    });
    EXPECT_EQ(said, errorFromErrno(EPERM, "pipe").message);
}

TEST_F(AChildProcess, CannotBeStartedByAUserWhoHasTooMany) {
    const std::string said = failureAfter([] {
        const rlimit one = {1, 1};
        return becomeUser(unknownUser()) && setrlimit(RLIMIT_NPROC, &one) == 0;
    });
    if (said == "not prepared")
        GTEST_SKIP() << "no right to become another user";
    EXPECT_EQ(said, errorFromErrno(EAGAIN, "/bin/sleep").message);
}

} // namespace vantry
