#include "platform/ItemKind.h"

#include "base/UniqueFd.h"

#include <cerrno>
#include <expected>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantry {

namespace {

constexpr int statxFlags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;

// Finds `path` in what the kernel has in memory; no file system is asked. The error is an errno: EAGAIN when it is not
// all there.
std::expected<UniqueFd, int> openCached(const std::filesystem::path& path) {
    open_how how = {};
    how.flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    how.resolve = RESOLVE_CACHED;
    UniqueFd fd(static_cast<int>(syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how)));
    return fd ? std::expected<UniqueFd, int>(std::move(fd)) : std::unexpected(errno);
}

ItemKind kindOf(int fd, const char* path, int flags) {
    struct statx facts = {};
    if (statx(fd, path, statxFlags | flags, STATX_TYPE, &facts) != 0)
        return ItemKind::none;
    return S_ISREG(facts.stx_mode)   ? ItemKind::regularFile
           : S_ISDIR(facts.stx_mode) ? ItemKind::folder
                                     : ItemKind::other;
}

// Whether what is not in memory of `path` would be read from a disk. File systems without a device of their own are
// those of the network and of other processes, and a few others.
bool restIsOnDisk(std::filesystem::path path) {
    while (path.has_relative_path()) {
        path = path.parent_path();
        if (const auto fd = openCached(path.empty() ? "." : path)) {
            struct statx facts = {};
            return statx(fd->get(), "", statxFlags | AT_EMPTY_PATH, 0, &facts) == 0 && facts.stx_dev_major != 0;
        }
    }
    return false;
}

} // namespace

ItemKind quickItemKind(const std::filesystem::path& path) {
    const auto fd = openCached(path);
    if (fd)
        return kindOf(fd->get(), "", AT_EMPTY_PATH);
    switch (fd.error()) {
    case EAGAIN: return restIsOnDisk(path) ? kindOf(AT_FDCWD, path.c_str(), 0) : ItemKind::unknown;
    case ENOSYS:
    case EINVAL:
    case EPERM: return kindOf(AT_FDCWD, path.c_str(), 0); // an older kernel, or a sandbox without this call
    case EMFILE:
    case ENFILE:
    case ENOMEM: return ItemKind::unknown;
    default: return ItemKind::none;
    }
}

} // namespace vantry
