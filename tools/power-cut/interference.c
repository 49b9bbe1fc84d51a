// Preloaded into the mover inside the virtual machine. What it does, the environment says:
//   SKIP=DIGITS    the calls of fsync with these numbers are only pretended
//   FAIL=DIGITS    they fail with EIO
//   SWAP=NUMBER    after the rename with this number, the folder that was left and the one that was entered are synced in
//                  the other order
//   PRESS=fsync    after each call that changes something, another file (PRESS_FILE) is synced, so that the file system
//   PRESS=syncfs   commits at that moment; or the whole file system is
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

static int left = -1, entered = -1; // the folders of the last rename
static int renames;

static int listed(const char *name, int number) {
    const char *digits = getenv(name);
    return digits && number < 10 && strchr(digits, '0' + number);
}

static long press(long result) {
    static int fd = -1, count;
    const int error = errno;
    const char *how = getenv("PRESS");
    if (!how || result < 0)
        return result;
    if (fd < 0)
        fd = (int)syscall(SYS_openat, AT_FDCWD, getenv("PRESS_FILE"), O_WRONLY | O_CLOEXEC, 0);
    ++count;
    if (syscall(SYS_pwrite64, fd, &count, sizeof count, 0) < 0 || syscall(*how == 's' ? SYS_syncfs : SYS_fsync, fd) != 0)
        abort();
    errno = error;
    return result;
}

int mkdirat(int folder, const char *name, mode_t mode) { return (int)press(syscall(SYS_mkdirat, folder, name, mode)); }

int unlinkat(int folder, const char *name, int flags) { return (int)press(syscall(SYS_unlinkat, folder, name, flags)); }

int openat(int folder, const char *name, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(more, mode_t) : 0;
    va_end(more);
    const long fd = syscall(SYS_openat, folder, name, flags, mode);
    return (int)(flags & O_CREAT ? press(fd) : fd);
}

ssize_t write(int fd, const void *bytes, size_t count) { return press(syscall(SYS_write, fd, bytes, count)); }

int renameat2(int from, const char *name, int to, const char *newName, unsigned flags) {
    ++renames;
    left = from;
    entered = to;
    return (int)press(syscall(SYS_renameat2, from, name, to, newName, flags));
}

int fsync(int fd) {
    static int number;
    ++number;
    if (listed("FAIL", number)) {
        errno = EIO;
        return -1;
    }
    if (listed("SKIP", number))
        return 0;
    if (left >= 0 && listed("SWAP", renames))
        fd = fd == left ? entered : left;
    return (int)syscall(SYS_fsync, fd);
}
