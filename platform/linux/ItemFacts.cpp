#include "platform/ItemFacts.h"

#include "base/Utf8.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

constexpr int cachedFlags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT;
constexpr std::int64_t bytesPerBlock = 512; // of stx_blocks, whatever the file system's own block

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

bool mayRead(const struct statx& facts) {
    if (geteuid() == 0)
        return true;
    if (facts.stx_uid == geteuid())
        return (facts.stx_mode & S_IRUSR) != 0;
    return (facts.stx_mode & (isInGroup(facts.stx_gid) ? S_IRGRP : S_IROTH)) != 0;
}

} // namespace

std::optional<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    struct statx said = {};
    if (statx(AT_FDCWD, path.c_str(), cachedFlags | AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_MTIME | STATX_BLOCKS,
              &said) != 0)
        return std::nullopt;
    ItemFacts facts;
    if ((said.stx_mask & STATX_TYPE) != 0)
        facts.kind = kindOf(said.stx_mode);
    if ((said.stx_mask & STATX_MTIME) != 0)
        facts.contentModificationDate = systemTimeFromUnix(said.stx_mtime.tv_sec, said.stx_mtime.tv_nsec);
    std::int64_t bytes = 0;
    if ((said.stx_mask & STATX_BLOCKS) != 0 && !__builtin_mul_overflow(said.stx_blocks, bytesPerBlock, &bytes))
        facts.allocatedBytes = bytes;
    return facts;
}

bool isFolder(const std::filesystem::path& path) {
    struct statx facts = {};
    return statx(AT_FDCWD, path.c_str(), cachedFlags, STATX_TYPE, &facts) == 0 && S_ISDIR(facts.stx_mode);
}

bool isReadableFolder(const std::filesystem::path& path) {
    struct statx facts = {};
    if (statx(AT_FDCWD, path.c_str(), cachedFlags, STATX_TYPE | STATX_MODE | STATX_UID | STATX_GID, &facts) != 0)
        return false;
    if (!S_ISDIR(facts.stx_mode))
        return false;
    const bool isOnDisk = facts.stx_dev_major != 0;
    return isOnDisk ? faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0 : mayRead(facts);
}

std::string displayName(const std::filesystem::path& path) {
    return withReplacementCharacters((path.has_filename() ? path : path.parent_path()).filename().native());
}

} // namespace vantry
