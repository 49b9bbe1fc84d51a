#include "platform/ChildProcess.h"
#include "platform/ChildProcessSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

extern "C" { // glibc 2.36 forgot it
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

// One for this process keeps the place of the child's.
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

// The link leads to the file that runs, also when it has no name any more; the child follows it before it is replaced.
Result<std::filesystem::path> ownExecutable() { return "/proc/self/exe"; }

} // namespace vantry
