#include "platform/ChildProcess.h"

#include "tests/platform/contract/ChildProcessFixture.h"
#include "tests/support/RefusedCall.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <sys/syscall.h>
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

TEST_F(AChildProcess, CannotBeStartedWhereProcessesAreForbidden) {
    EXPECT_EQ(failureAfter([] { return refuseCall(SYS_clone3, ENOSYS) && refuseCall(SYS_clone, EPERM); }),
              errorFromErrno(EPERM, "/bin/sleep").message);
}

} // namespace vantry
