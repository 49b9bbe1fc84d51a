#include "platform/ChildProcess.h"

#include "tests/platform/contract/ChildProcessFixture.h"
#include "tests/support/RefusedCall.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

TEST_F(AChildProcess, IsNotStartedOnAKernelWithoutPidfds) {
    EXPECT_EQ(failureAfter([] { return refuseCall(SYS_pidfd_open, ENOSYS); }),
              errorFromErrno(ENOSYS, "child exit").message);
}

TEST_F(AChildProcess, IsKilledAndReapedWhenItCannotBeWatched) {
    // pidfd_open fails for every process except this one.
    EXPECT_EQ(failureAfter([] { return refuseCall(SYS_pidfd_open, EMFILE, static_cast<std::uint32_t>(getpid())); }),
              errorFromErrno(EMFILE, "child exit").message);
}

// After ESRCH the number may belong to another process. Here it is still the child's, so a signal to it would show.
TEST_F(AChildProcess, ThatIsGoneBeforeItCanBeWatchedIsNotKilled) {
    const std::string said = inChildProcess([]() -> std::string {
        if (!refuseCall(SYS_pidfd_open, ESRCH, static_cast<std::uint32_t>(getpid())))
            return "not prepared";
        const auto child = ChildProcess::start("/bin/sleep", {"0.3"}, ChildOutput::nullDevice);
        if (child)
            return "started";
        siginfo_t ended = {};
        if (waitid(P_ALL, 0, &ended, WEXITED) != 0)
            return "reaped";
        return child.error().message + (ended.si_code == CLD_EXITED ? ", left alone" : ", killed");
    });
    EXPECT_EQ(said, errorFromErrno(ESRCH, "child exit").message + ", left alone");
}

TEST_F(AChildProcess, CannotBeStartedWhereProcessesAreForbidden) {
    EXPECT_EQ(failureAfter([] { return refuseCall(SYS_clone3, ENOSYS) && refuseCall(SYS_clone, EPERM); }),
              errorFromErrno(EPERM, "/bin/sleep").message);
}

} // namespace vantry
