#include "platform/ChildProcess.h"
#include "platform/ChildProcessSystem.h"

#include <array>
#include <cerrno>
#include <climits>
#include <crt_externs.h>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <mach-o/dyld.h>
#include <memory>
#include <sys/event.h>
#include <unistd.h>

namespace vantry {

namespace ChildProcessSystem {

namespace {

bool setCloseOnExec(int fd) { return fcntl(fd, F_SETFD, FD_CLOEXEC) == 0; }

} // namespace

int openPipe(std::array<int, 2>& ends) {
    if (pipe(ends.data()) != 0)
        return errno;
    if (setCloseOnExec(ends[0]) && setCloseOnExec(ends[1]))
        return 0;
    const int failure = errno;
    for (const int end : ends)
        close(end);
    return failure;
}

char* const* environment() { return *_NSGetEnviron(); }

short inheritStandardStreamsOnly(SpawnPlan& /*plan*/) { return POSIX_SPAWN_CLOEXEC_DEFAULT; }

Result<UniqueFd> prepareExitWatch() {
    UniqueFd queue(kqueue());
    if (!queue || !setCloseOnExec(queue.get()))
        return std::unexpected(errorFromErrno(errno, "child exit"));
    return queue;
}

int watchExit(UniqueFd& watch, pid_t pid) {
    struct kevent exit = {};
    EV_SET(&exit, static_cast<std::uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (kevent(watch.get(), &exit, 1, nullptr, 0, nullptr) == 0)
        return 0;
    if (errno != ESRCH)
        return errno;
    // It has already ended and has to be reaped. No event will come, so a user event is triggered instead.
    std::array<struct kevent, 2> ended = {};
    EV_SET(&ended[0], 0, EVFILT_USER, EV_ADD, 0, 0, nullptr);
    EV_SET(&ended[1], 0, EVFILT_USER, 0, NOTE_TRIGGER, 0, nullptr);
    return kevent(watch.get(), ended.data(), static_cast<int>(ended.size()), nullptr, 0, nullptr) == 0 ? 0 : errno;
}

// The process number is not reused before the child is reaped.
void sendSignal(const UniqueFd& /*watch*/, pid_t pid, int signal) { kill(pid, signal); }

} // namespace ChildProcessSystem

Result<std::filesystem::path> ownExecutable() {
    std::uint32_t size = PATH_MAX;
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        path.assign(size, '\0');
        if (_NSGetExecutablePath(path.data(), &size) != 0)
            return std::unexpected(errorFromErrno(ENAMETOOLONG, "executable"));
    }
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), std::free);
    if (!resolved)
        return std::unexpected(errorFromErrno(errno, path.c_str()));
    return resolved.get();
}

} // namespace vantry
