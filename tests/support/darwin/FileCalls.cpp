// What Darwin's calls about files do beyond those of Linux: open(2), fcntl(2), rename(2), getfsstat(2),
// getiopolicy_np(3).

#include "tests/support/darwin/Darwin.h"
#include "tests/support/darwin/DarwinSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <linux/openat2.h>
#include <pthread.h>
#include <string>
#include <sys/syscall.h>

namespace vantry {

namespace {

// The policy of each thread, at first 0, the default. As a thread_local variable it would be zeroed data, with which
// mold 1.10 makes executables that do not start when its address is at the wrong side of a page's end.
pthread_key_t policyKey() {
    static const pthread_key_t key = [] {
        pthread_key_t made = 0;
        if (pthread_key_create(&made, nullptr) != 0)
            std::abort();
        return made;
    }();
    return key;
}

int policy() { return static_cast<int>(reinterpret_cast<std::intptr_t>(pthread_getspecific(policyKey()))); }

int closeAndFail(int fd, int error) {
    close(fd);
    errno = error;
    return -1;
}

// O_PATH is the nearest that Linux has to O_EVTONLY: it opens links, too, and gives no right to look into folders.
int openAs(int folder, const char* path, int flags, mode_t mode) {
    open_how how = {};
    how.flags = static_cast<unsigned>(flags & ~(O_EVTONLY | O_NOFOLLOW_ANY));
    how.mode = mode;
    if ((flags & O_EVTONLY) != 0)
        how.flags = O_PATH | (how.flags & (O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if ((flags & O_NOFOLLOW_ANY) != 0)
        how.resolve = RESOLVE_NO_SYMLINKS;
    const int fd = static_cast<int>(syscall(SYS_openat2, folder, path, &how, sizeof how));
    struct stat facts = {};
    if (fd < 0 || fstat(fd, &facts) != 0)
        return fd;
    if (S_ISLNK(facts.st_mode))
        return closeAndFail(fd, ELOOP);
    // Whoever opens a folder without its contents has them fetched, or is refused.
    DarwinSystem& system = DarwinSystem::get();
    if ((flags & O_EVTONLY) == 0 && (system.flagsOf(facts.st_dev, facts.st_ino) & SF_DATALESS) != 0) {
        if (policy() == IOPOL_MATERIALIZE_DATALESS_FILES_OFF)
            return closeAndFail(fd, EDEADLK);
        system.fetched.emplace_back(path);
    }
    return fd;
}

mode_t modeFor(int flags, va_list& arguments) { return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0; }

} // namespace

} // namespace vantry

extern "C" {

int darwinOpen(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = vantry::modeFor(flags, arguments);
    va_end(arguments);
    return vantry::openAs(AT_FDCWD, path, flags, mode);
}

int darwinOpenat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = vantry::modeFor(flags, arguments);
    va_end(arguments);
    return vantry::openAs(folder, path, flags, mode);
}

int darwinFcntl(int fd, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (command != F_GETPATH)
        return fcntl(fd, command, argument);
    // Of an item without a name Darwin tells the last one; what Linux appends to it leads nowhere either.
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    const ssize_t length = readlink(link.c_str(), static_cast<char*>(argument), MAXPATHLEN - 1);
    if (length < 0)
        return errno = EBADF, -1;
    static_cast<char*>(argument)[length] = 0;
    return 0;
}

int renameatx_np(int from, const char* fromName, int to, const char* toName, unsigned flags) {
    switch (flags) {
    case 0: return renameat2(from, fromName, to, toName, 0);
    case RENAME_EXCL: return renameat2(from, fromName, to, toName, RENAME_NOREPLACE);
    case RENAME_SWAP: return renameat2(from, fromName, to, toName, RENAME_EXCHANGE);
    default: return errno = EINVAL, -1;
    }
}

int getfsstat(struct statfs* mounts, int size, int flags) {
    const auto& system = vantry::DarwinSystem::get();
    if (system.mountsError != 0 || flags != MNT_NOWAIT)
        return errno = system.mountsError != 0 ? system.mountsError : EINVAL, -1;
    const int count = std::min(size / static_cast<int>(sizeof *mounts), static_cast<int>(system.mounts.size()));
    for (int i = 0; i < count; ++i) {
        const auto& [type, path] = system.mounts[static_cast<std::size_t>(i)];
        mounts[i] = {};
        type.copy(mounts[i].f_fstypename, sizeof mounts[i].f_fstypename - 1);
        path.native().copy(mounts[i].f_mntonname, sizeof mounts[i].f_mntonname - 1);
    }
    return count;
}

int getiopolicy_np(int type, int scope) {
    if (type != IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES || scope != IOPOL_SCOPE_THREAD)
        return errno = EINVAL, -1;
    return vantry::policy();
}

int setiopolicy_np(int type, int scope, int policy) {
    if (getiopolicy_np(type, scope) < 0)
        return -1;
    pthread_setspecific(vantry::policyKey(), reinterpret_cast<void*>(std::intptr_t{policy}));
    return 0;
}
}
