#include "app/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vantry {

namespace {

// Global, because a signal handler can reach nothing else.
int writeEnd = -1;

void handleTermination(int) {
    const int savedErrno = errno;
    [[maybe_unused]] const auto written = write(writeEnd, "", 1);
    errno = savedErrno;
}

} // namespace

Result<int> catchTerminationSignals() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        return std::unexpected(errorFromErrno(errno, "pipe"));
    for (const int end : ends)
        if (fcntl(end, F_SETFD, FD_CLOEXEC) != 0 || fcntl(end, F_SETFL, O_NONBLOCK) != 0)
            return std::unexpected(errorFromErrno(errno, "pipe"));
    writeEnd = ends[1];
    struct sigaction action = {};
    action.sa_handler = handleTermination;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        if (sigaction(signal, &action, nullptr) != 0)
            return std::unexpected(errorFromErrno(errno, "sigaction"));
    return ends[0];
}

} // namespace vantry
