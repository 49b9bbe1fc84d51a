#include "platform/ChildProcess.h"
#include "platform/ChildProcessSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

extern "C" { // the header of glibc 2.36 lacks it
#include <sys/pidfd.h>
}

namespace vantry {

namespace ChildProcessSystem {

int openPipe(std::array<int, 2>& ends) { return pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno; }

char* const* environment() { return environ; }

short inheritStandardStreamsOnly(SpawnPlan& plan) {
    plan.action(posix_spawn_file_actions_addclosefrom_np, STDERR_FILENO + 1);
    return 0;
}

// A descriptor of this process reserves the place for the child's.
Result<UniqueFd> prepareExitWatch() {
    UniqueFd place(pidfd_open(getpid(), 0));
    if (!place)
        return std::unexpected(errorFromErrno(errno, "child exit"));
    return place;
}

int watchExit(UniqueFd& watch, pid_t pid) {
    watch.reset();
    watch.reset(pidfd_open(pid, 0));
    return watch ? 0 : errno;
}

void sendSignal(const UniqueFd& watch, pid_t /*pid*/, int signal) {
    pidfd_send_signal(watch.get(), signal, nullptr, 0);
}

} // namespace ChildProcessSystem

// The link leads to the running file even when it was deleted. The child resolves it before it becomes that program.
Result<std::filesystem::path> ownExecutable() { return "/proc/self/exe"; }

} // namespace vantry
