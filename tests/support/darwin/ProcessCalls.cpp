// What Darwin's calls about processes do beyond those of Linux: posix_spawn(2), kqueue(2), dyld(3), dlsym(3),
// confstr(3).

#include "tests/support/darwin/Darwin.h"
#include "tests/support/darwin/DarwinSystem.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <mach-o/dyld.h>
#include <set>
#include <string>
#include <sys/event.h>
#include <sys/eventfd.h>
#include <sys/wait.h>

extern "C" { // glibc 2.36 forgot it
#include <sys/pidfd.h>
}

namespace vantry {

namespace {

// Where an attribute object of Linux, which refuses the flag, keeps it.
int& closesByDefault(posix_spawnattr_t& attributes) { return attributes.__pad[0]; }

// A child that has ended, and waits to be reaped, cannot be found any more.
bool isZombie(pid_t pid) {
    siginfo_t ended = {};
    return waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid == pid;
}

// The descriptor of the process takes the place of the queue, also where that is the last one to be had.
int watch(int queue, pid_t pid) {
    if (isZombie(pid))
        return errno = ESRCH, -1;
    int process = pidfd_open(pid, 0);
    if (process < 0 && errno == EMFILE) {
        close(queue);
        process = pidfd_open(pid, 0);
    }
    if (process < 0 || process == queue)
        return process < 0 ? -1 : 0;
    const bool isInherited = (fcntl(queue, F_GETFD) & FD_CLOEXEC) == 0;
    const bool done = dup3(process, queue, isInherited ? 0 : O_CLOEXEC) == queue;
    close(process);
    return done ? 0 : -1;
}

} // namespace

} // namespace vantry

extern "C" {

int darwinSpawnSetFlags(posix_spawnattr_t* attributes, short flags) noexcept {
    vantry::closesByDefault(*attributes) = flags & POSIX_SPAWN_CLOEXEC_DEFAULT;
    return posix_spawnattr_setflags(attributes, static_cast<short>(flags & ~POSIX_SPAWN_CLOEXEC_DEFAULT));
}

// With the flag Darwin closes every descriptor that no file action has made. Here the standard ones stay open in any
// case.
int darwinSpawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment) {
    if (vantry::closesByDefault(const_cast<posix_spawnattr_t&>(*attributes)) != 0)
        posix_spawn_file_actions_addclosefrom_np(const_cast<posix_spawn_file_actions_t*>(actions), STDERR_FILENO + 1);
    const auto& programs = vantry::DarwinSystem::get().programs;
    const auto other = programs.find(path);
    return posix_spawn(pid, other != programs.end() ? other->second.c_str() : path, actions, attributes, arguments,
                       environment);
}

// Without a process to watch, a queue is a counter of events.
int kqueue() { return eventfd(0, 0); }

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* /*events*/, int eventCount,
           const timespec* /*timeout*/) {
    if (eventCount != 0)
        return errno = ENOSYS, -1;
    std::set<std::uintptr_t> userEvents; // forgotten after the call, as only the same call triggers them
    for (const struct kevent* change = changes; change != changes + changeCount; ++change) {
        const auto pid = static_cast<pid_t>(change->ident);
        if (change->filter == EVFILT_PROC && change->flags == EV_ADD && change->fflags == NOTE_EXIT) {
            const auto& before = vantry::DarwinSystem::get().beforeWatching;
            if (const int refusal = before ? before(pid) : 0; refusal != 0)
                return errno = refusal, -1;
            if (vantry::watch(queue, pid) != 0)
                return -1;
        } else if (change->filter == EVFILT_USER && (change->fflags & NOTE_TRIGGER) != 0) {
            if (!userEvents.contains(change->ident))
                return errno = ENOENT, -1;
            if (eventfd_write(queue, 1) != 0)
                return -1;
        } else if (change->filter == EVFILT_USER && change->flags == EV_ADD) {
            userEvents.insert(change->ident);
        } else {
            return errno = EINVAL, -1;
        }
    }
    return 0;
}

int _NSGetExecutablePath(char* path, std::uint32_t* size) {
    const std::string& executable = vantry::DarwinSystem::get().executable;
    if (executable.size() >= *size) {
        *size = static_cast<std::uint32_t>(executable.size() + 1);
        return -1;
    }
    std::memcpy(path, executable.c_str(), executable.size() + 1);
    return 0;
}

// Without what the executable is linked with.
void* darwinDlsym(void* handle, const char* symbol) noexcept {
    if (handle != RTLD_MAIN_ONLY)
        return dlsym(handle, symbol);
    void* const found = dlsym(dlopen(nullptr, RTLD_LAZY), symbol);
    Dl_info place = {};
    std::error_code error;
    const bool isOurs =
        found && dladdr(found, &place) != 0 && std::filesystem::equivalent(place.dli_fname, "/proc/self/exe", error);
    return isOurs ? found : nullptr;
}

std::size_t darwinConfstr(int name, char* buffer, std::size_t size) noexcept {
    if (name != _CS_DARWIN_USER_TEMP_DIR)
        return confstr(name, buffer, size);
    const auto& folder = vantry::DarwinSystem::get().userTemporaryFolder;
    if (folder.empty())
        return errno = EIO, 0;
    std::snprintf(buffer, size, "%s/", folder.c_str());
    return folder.native().size() + 2;
}
}
