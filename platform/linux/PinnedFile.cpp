#include "platform/PinnedFile.h"

#include "platform/linux/Statx.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/openat2.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantry {

namespace {

constexpr int itemFlags = O_PATH | O_NOFOLLOW | O_CLOEXEC;

using Opened = std::expected<UniqueFd, int>; // the error is an errno

std::optional<struct statx> statxOf(int fd, const char* name, unsigned mask) {
    struct statx facts = {};
    if (statx(fd, name, statxByPath | (*name == 0 ? AT_EMPTY_PATH : 0), mask | STATX_TYPE, &facts) != 0)
        return std::nullopt;
    return facts;
}

// At least one of the two is held open, so its inode number cannot be reused.
bool isSameItem(const struct statx& one, const struct statx& other) {
    return (one.stx_mask & other.stx_mask & STATX_INO) != 0 && one.stx_ino == other.stx_ino &&
           one.stx_dev_major == other.stx_dev_major && one.stx_dev_minor == other.stx_dev_minor &&
           (one.stx_mask & STATX_MNT_ID) == (other.stx_mask & STATX_MNT_ID) && one.stx_mnt_id == other.stx_mnt_id;
}

// Does what openat2 does, for kernels and sandboxes without it: opens one component at a time, relative to the one
// before.
Opened walkToFolder(std::string_view path) {
    UniqueFd folder(open("/", itemFlags | O_DIRECTORY));
    while (folder) {
        path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
        if (path.empty())
            return folder;
        const std::string name(path.substr(0, path.find('/')));
        path.remove_prefix(name.size());
        folder.reset(openat(folder.get(), name.c_str(), itemFlags));
        if (!folder)
            break;
        const auto facts = statxOf(folder.get(), "", 0);
        if (!facts)
            break;
        if (!S_ISDIR(facts->stx_mode))
            return std::unexpected(S_ISLNK(facts->stx_mode) ? ELOOP : ENOTDIR);
    }
    return std::unexpected(errno);
}

} // namespace

std::expected<UniqueFd, int> PinnedFolder::opened(const std::string& path) {
    constexpr int attempts = 32;
    open_how how = {};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        UniqueFd folder(static_cast<int>(syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how)));
        if (folder)
            return folder;
        switch (errno) {
        case EAGAIN: // a component was renamed during the lookup
        case EINTR: continue;
        case ENOSYS:
        case EINVAL:
        case E2BIG:
        case EPERM: return walkToFolder(path);
        default: return std::unexpected(errno);
        }
    }
    return walkToFolder(path);
}

bool PinnedFolder::isInPlace() const {
    const auto there = opened(path_.native());
    if (!there)
        return false;
    const auto found = statxOf(there->get(), "", STATX_INO | STATX_MNT_ID);
    const auto pinned = statxOf(descriptor(), "", STATX_INO | STATX_MNT_ID);
    return found && pinned && isSameItem(*found, *pinned);
}

std::optional<PinnedFolderFacts> PinnedFolder::facts() const {
    const auto said = statxOf(descriptor(), "", 0);
    if (!said)
        return std::nullopt;
    PinnedFolderFacts facts;
    if ((said->stx_mask & STATX_TYPE) != 0) {
        facts.isDirectory = S_ISDIR(said->stx_mode);
        facts.isSymbolicLink = S_ISLNK(said->stx_mode);
    }
    facts.volumeIdentifier = readFileFingerprint(descriptor()).volumeIdentifier;
    return facts;
}

std::expected<UniqueFd, PinFailure> PinnedFile::opened(int folder, const std::string& name) {
    UniqueFd item(openat(folder, name.c_str(), itemFlags));
    if (!item)
        return std::unexpected(failureOf(errno));
    const auto said = statxOf(item.get(), "", 0);
    if (!said || (said->stx_mask & STATX_TYPE) == 0)
        return std::unexpected(PinFailure::unavailable);
    if (S_ISLNK(said->stx_mode))
        return std::unexpected(PinFailure::link);
    if (!S_ISREG(said->stx_mode) && !S_ISDIR(said->stx_mode))
        return std::unexpected(PinFailure::special);
    return item;
}

std::optional<PinnedFileFacts> PinnedFile::facts() const {
    const auto said = statxOf(descriptor(), "", STATX_SIZE | STATX_BLOCKS | STATX_UID);
    if (!said)
        return std::nullopt;
    PinnedFileFacts facts{.isPackage = false, .isUbiquitousItem = false};
    if ((said->stx_mask & STATX_TYPE) != 0) {
        facts.isRegularFile = S_ISREG(said->stx_mode);
        facts.isSymbolicLink = S_ISLNK(said->stx_mode);
    }
    if ((said->stx_mask & STATX_SIZE) != 0)
        facts.contentBytes = static_cast<std::int64_t>(said->stx_size);
    facts.allocatedBytes = facts.totalAllocated = allocatedBytesOf(*said);
    if ((said->stx_mask & STATX_UID) != 0)
        facts.owner = said->stx_uid;
    // Last, so that the date covers writes that happened while the rest was read.
    facts.fingerprint = readFileFingerprint(descriptor());
    return facts;
}

PinnedPlace PinnedFile::placeOf(int folder, const std::string& name) const {
    const auto found = statxOf(folder, name.c_str(), STATX_INO | STATX_MNT_ID);
    const auto pinned = statxOf(descriptor(), "", STATX_INO | STATX_MNT_ID);
    if (!found || !pinned)
        return PinnedPlace::missing;
    if (isSameItem(*found, *pinned))
        return PinnedPlace::unchanged;
    return S_ISLNK(found->stx_mode) ? PinnedPlace::link : PinnedPlace::otherItem;
}

} // namespace vantry
