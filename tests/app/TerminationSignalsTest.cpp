#include "app/TerminationSignals.h"
#include "base/UniqueFd.h"
#include "tests/app/RestoredSignals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vantry {

namespace {

class TerminationSignals : public testing::Test {
protected:
    RestoredSignals restored;
};

/// The number of bytes waiting in a non-blocking pipe.
ssize_t waitingBytes(int fd) {
    std::array<char, 16> buffer{};
    return read(fd, buffer.data(), buffer.size());
}

TEST_F(TerminationSignals, EachGivesOneByteToRead) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        const auto fd = catchTerminationSignals();
        ASSERT_TRUE(fd) << fd.error().message;
        const UniqueFd owned(*fd);
        ASSERT_EQ(fcntl(*fd, F_GETFL) & O_NONBLOCK, O_NONBLOCK);
        EXPECT_EQ(waitingBytes(*fd), -1);
        ASSERT_EQ(raise(signal), 0);
        EXPECT_EQ(waitingBytes(*fd), 1);
        EXPECT_EQ(waitingBytes(*fd), -1);
    }
}

TEST_F(TerminationSignals, TheDescriptorIsNotInherited) {
    const auto fd = catchTerminationSignals();
    ASSERT_TRUE(fd) << fd.error().message;
    const UniqueFd owned(*fd);
    EXPECT_EQ(fcntl(*fd, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(TerminationSignals, TheSameSignalAgainEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a sanitizer may have started a thread
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        EXPECT_EXIT(
            {
                if (!catchTerminationSignals() || raise(signal) != 0)
                    _exit(1);
                raise(signal);
                _exit(2);
            },
            testing::KilledBySignal(signal), "")
            << signal;
}

TEST_F(TerminationSignals, AnotherSignalAfterTheFirstIsStillCaught) {
    const auto fd = catchTerminationSignals();
    ASSERT_TRUE(fd) << fd.error().message;
    const UniqueFd owned(*fd);
    raise(SIGINT);
    raise(SIGTERM);
    EXPECT_EQ(waitingBytes(*fd), 2);
}

} // namespace

} // namespace vantry
