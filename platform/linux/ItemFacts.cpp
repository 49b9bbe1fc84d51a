#include "platform/FoundItem.h"

#include "base/Utf8.h"
#include "platform/linux/LinkTargets.h"
#include "platform/linux/PromptLookup.h"
#include "platform/linux/Statx.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

constexpr int ofItem = AT_EMPTY_PATH | AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT;

ItemFacts::Kind kindOf(unsigned mode) {
    return S_ISREG(mode)   ? ItemFacts::Kind::regularFile
           : S_ISDIR(mode) ? ItemFacts::Kind::folder
           : S_ISLNK(mode) ? ItemFacts::Kind::symbolicLink
                           : ItemFacts::Kind::other;
}

bool isInGroup(gid_t group) {
    if (group == getegid())
        return true;
    const int count = getgroups(0, nullptr);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
    const int got = getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(got, 0)));
    return std::ranges::count(groups, group) != 0;
}

bool bitsLetRead(const struct statx& facts) {
    if (geteuid() == 0)
        return true;
    if (facts.stx_uid == geteuid())
        return (facts.stx_mode & S_IRUSR) != 0;
    return (facts.stx_mode & (isInGroup(facts.stx_gid) ? S_IRGRP : S_IROTH)) != 0;
}

bool mayRead(int fd, const struct statx& facts) {
    if (!isOnPromptFileSystem(fd))
        return bitsLetRead(facts);
    if (faccessat(fd, "", R_OK, AT_EACCESS | AT_EMPTY_PATH) == 0)
        return true;
    return errno != EACCES && bitsLetRead(facts); // an older kernel lacks the call: judge by the bits
}

// EAGAIN means that a server or another process would have to be waited for.
Error lookupError(int errorNumber) { return errorFromErrno(errorNumber == EAGAIN ? ETIMEDOUT : errorNumber); }

// The facts of the item that `fd` is open for, or of the one at `path`, depending on `flags`.
Result<ItemFacts> factsOf(int fd, const char* path, int flags) {
    struct statx said = {};
    if (statx(fd, path, flags, STATX_TYPE | STATX_MTIME | STATX_BLOCKS, &said) != 0)
        return std::unexpected(lookupError(errno));
    ItemFacts facts;
    if ((said.stx_mask & STATX_TYPE) != 0)
        facts.kind = kindOf(said.stx_mode);
    if ((said.stx_mask & STATX_MTIME) != 0)
        facts.contentModificationDate = systemTimeFromUnix(said.stx_mtime.tv_sec, said.stx_mtime.tv_nsec);
    facts.allocatedBytes = allocatedBytesOf(said);
    return facts;
}

} // namespace

Result<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    const auto item = readFoundItem(path, [](const ItemFacts&) { return false; });
    return item ? Result<ItemFacts>(item->facts) : std::unexpected(item.error());
}

Result<FoundItem> readFoundItem(const std::filesystem::path& path,
                                const std::function<bool(const ItemFacts&)>& isWanted) {
    const auto fd = openPromptly(path, FinalLink::isOpened);
    const bool noneLeft = !fd && (fd.error() == EMFILE || fd.error() == ENFILE); // then it is looked up by its path
    if (!fd && !noneLeft)
        return std::unexpected(lookupError(fd.error()));
    const auto facts = noneLeft ? factsOf(AT_FDCWD, path.c_str(), statxByPath) : factsOf(fd->get(), "", ofItem);
    if (!facts)
        return std::unexpected(facts.error());
    return FoundItem{*facts, isWanted(*facts) && fd ? readFileFingerprint(fd->get()) : FileFingerprint()};
}

FolderAccess folderAccess(const std::filesystem::path& path) {
    const auto fd = openPromptly(path, FinalLink::isFollowed);
    if (!fd)
        switch (lookupError(fd.error()).kind) {
        case ErrorKind::notFound: return FolderAccess::none;
        case ErrorKind::permissionDenied: return FolderAccess::unreadable;
        default: return fd.error() == ELOOP || fd.error() == ENAMETOOLONG ? FolderAccess::none : FolderAccess::unknown;
        }
    struct statx facts = {};
    if (statx(fd->get(), "", ofItem, STATX_TYPE | STATX_MODE | STATX_UID | STATX_GID, &facts) != 0)
        return FolderAccess::unknown;
    if (!S_ISDIR(facts.stx_mode))
        return FolderAccess::none;
    return mayRead(fd->get(), facts) ? FolderAccess::readable : FolderAccess::unreadable;
}

bool isReadableFile(const std::filesystem::path& path) {
    const auto fd = openPromptly(path, FinalLink::isFollowed);
    struct statx facts = {};
    return fd && statx(fd->get(), "", ofItem, STATX_TYPE | STATX_MODE | STATX_UID | STATX_GID, &facts) == 0 &&
           S_ISREG(facts.stx_mode) && mayRead(fd->get(), facts);
}

Result<std::filesystem::path> resolvedPath(const std::filesystem::path& path) {
    const auto fd = openPromptly(path, FinalLink::isFollowed);
    if (!fd)
        return std::unexpected(lookupError(fd.error()));
    std::error_code error;
    auto resolved = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd->get()), error);
    if (error)
        return std::unexpected(errorFromErrno(error.value()));
    return resolved;
}

ItemKind quickItemKind(const std::filesystem::path& path) {
    const auto fd = openPromptly(path, FinalLink::isOpened);
    if (fd) {
        struct statx facts = {};
        if (statx(fd->get(), "", ofItem, STATX_TYPE, &facts) != 0)
            return ItemKind::none;
        return S_ISREG(facts.stx_mode)   ? ItemKind::regularFile
               : S_ISDIR(facts.stx_mode) ? ItemKind::folder
                                         : ItemKind::other;
    }
    switch (fd.error()) {
    case EAGAIN:
    case EMFILE:
    case ENFILE:
    case ENOMEM: return ItemKind::unknown;
    default: return ItemKind::none;
    }
}

FolderOpener folderOpener() { return {}; }

std::string displayName(const std::filesystem::path& path) {
    return withReplacementCharacters((path.has_filename() ? path : path.parent_path()).filename().native());
}

} // namespace vantry
