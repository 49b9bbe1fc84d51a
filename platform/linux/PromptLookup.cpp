#include "platform/linux/PromptLookup.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <fstream>
#include <linux/openat2.h>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

using namespace std::string_view_literals;

// File systems on a disk of this machine or in its memory. "fuseblk" is on a disk too, but a process answers for it.
constexpr std::array promptTypes{"bcachefs"sv, "btrfs"sv,    "devtmpfs"sv, "erofs"sv,    "exfat"sv,   "ext2"sv,
                                 "ext3"sv,     "ext4"sv,     "f2fs"sv,     "hfs"sv,      "hfsplus"sv, "iso9660"sv,
                                 "jfs"sv,      "msdos"sv,    "nilfs2"sv,   "ntfs3"sv,    "overlay"sv, "proc"sv,
                                 "ramfs"sv,    "reiserfs"sv, "rootfs"sv,   "squashfs"sv, "sysfs"sv,   "tmpfs"sv,
                                 "udf"sv,      "ufs"sv,      "vfat"sv,     "xfs"sv,      "zfs"sv};

// Read from the kernel's list: `statfs` would ask the file system. Empty for a mount that is not listed: the root of a
// chroot lies in one if it is no mount itself.
std::string typeOfMount(std::uint64_t identifier) {
    std::ifstream list("/proc/self/mountinfo");
    const std::string begin = std::to_string(identifier) + " ";
    for (std::string line; std::getline(list, line);)
        if (line.starts_with(begin)) {
            constexpr auto separator = " - "sv; // after the optional fields
            const auto at = line.find(separator);
            std::istringstream rest(at == std::string::npos ? "" : line.substr(at + separator.size()));
            std::string type;
            rest >> type;
            return type;
        }
    return {};
}

int flagsFor(FinalLink link) { return O_PATH | O_CLOEXEC | (link == FinalLink::isOpened ? O_NOFOLLOW : 0); }

std::expected<UniqueFd, int> resultOf(long fd) {
    return fd >= 0 ? std::expected<UniqueFd, int>(UniqueFd(static_cast<int>(fd))) : std::unexpected(errno);
}

std::expected<UniqueFd, int> openCached(int folder, const std::filesystem::path& path, FinalLink link) {
    open_how how = {};
    how.flags = static_cast<std::uint64_t>(flagsFor(link));
    how.resolve = RESOLVE_CACHED;
    return resultOf(syscall(SYS_openat2, folder, path.c_str(), &how, sizeof how));
}

std::expected<UniqueFd, int> openAnyway(int folder, const std::filesystem::path& path, FinalLink link) {
    return resultOf(openat(folder, path.c_str(), flagsFor(link)));
}

std::expected<UniqueFd, int> openPromptly(const std::filesystem::path& path, FinalLink link, int linksLeft);

// Opens the target of the link `item`, which is in `folder`.
std::expected<UniqueFd, int> openTarget(int folder, int item, int linksLeft) {
    std::error_code error;
    const auto ofFolder = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder), error);
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlinkat(item, "", target.data(), target.size());
    if (error || length < 0)
        return std::unexpected(error ? error.value() : errno);
    if (linksLeft == 0)
        return std::unexpected(ELOOP);
    return openPromptly(ofFolder / std::string(target.data(), static_cast<std::size_t>(length)), FinalLink::isFollowed,
                        linksLeft - 1);
}

// For a path that the kernel has not cached: opens the parent folder in the same way, then the item in it.
std::expected<UniqueFd, int> openInFolder(const std::filesystem::path& path, FinalLink link, int linksLeft) {
    const auto item = path.has_filename() ? path : path.parent_path();
    const auto folder =
        openPromptly(item.has_parent_path() ? item.parent_path() : ".", FinalLink::isFollowed, linksLeft);
    if (!folder)
        return std::unexpected(folder.error());
    if (!isOnPromptFileSystem(folder->get()))
        return openCached(folder->get(), item.filename(), link);
    auto fd = openAnyway(folder->get(), item.filename(), FinalLink::isOpened);
    struct statx facts = {};
    if (!fd || link == FinalLink::isOpened)
        return fd;
    if (statx(fd->get(), "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_TYPE, &facts) != 0)
        return std::unexpected(errno);
    return S_ISLNK(facts.stx_mode) ? openTarget(folder->get(), fd->get(), linksLeft) : std::move(fd);
}

std::expected<UniqueFd, int> openPromptly(const std::filesystem::path& path, FinalLink link, int linksLeft) {
    auto fd = openCached(AT_FDCWD, path, link);
    if (fd)
        return fd;
    switch (fd.error()) {
    case EAGAIN:
        return path.has_relative_path() ? openInFolder(path, link, linksLeft) : openAnyway(AT_FDCWD, path, link);
    case ENOSYS:
    case EINVAL:
    case EPERM: return openAnyway(AT_FDCWD, path, link); // an older kernel, or a sandbox that blocks openat2
    default: return fd;
    }
}

} // namespace

std::expected<UniqueFd, int> openPromptly(const std::filesystem::path& path, FinalLink link) {
    constexpr int mostLinks = 40; // as many as the kernel follows
    return openPromptly(path, link, mostLinks);
}

bool isOnPromptFileSystem(int fd) {
    struct statx facts = {};
    if (statx(fd, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, STATX_MNT_ID, &facts) != 0)
        return false;
    const auto type = (facts.stx_mask & STATX_MNT_ID) != 0 ? typeOfMount(facts.stx_mnt_id) : ""; // an older kernel
    if (type.empty())
        return facts.stx_dev_major != 0; // which is 0 for network file systems
    return std::ranges::count(promptTypes, type) != 0;
}

} // namespace vantry
