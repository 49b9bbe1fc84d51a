#include "platform/FileFingerprint.h"

#include "base/Format.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace vantry {

namespace {

// STATX_MNT_ID_UNIQUE of Linux 6.8, which older headers lack: a number that is never given to another mount.
constexpr unsigned uniqueMountMask = 0x4000;

// The file system's own name for the file. It contains the inode's generation, which differs for each file; a file that
// is deleted and created again often gets the same inode number and birth time.
std::optional<std::string> fileHandle(int fd) {
    struct alignas(file_handle) Storage {
        std::array<std::byte, sizeof(file_handle)> head;
        std::array<unsigned char, MAX_HANDLE_SZ> handle;
    } storage{};
    file_handle head{};
    head.handle_bytes = MAX_HANDLE_SZ;
    std::memcpy(storage.head.data(), &head, sizeof head);
    int mount = 0;
    if (name_to_handle_at(fd, "", reinterpret_cast<file_handle*>(&storage), &mount, AT_EMPTY_PATH) != 0)
        return std::nullopt;
    std::memcpy(&head, storage.head.data(), sizeof head);
    std::string text = formatted("handle {}:", head.handle_type);
    for (std::size_t i = 0; i < head.handle_bytes && i < storage.handle.size(); ++i)
        text += formatted("{:02x}", storage.handle[i]);
    return text;
}

std::optional<std::string> resourceIdentifier(const std::optional<std::string>& handle, const struct statx& facts) {
    const bool hasBirthTime = (facts.stx_mask & STATX_BTIME) != 0;
    if ((facts.stx_mask & STATX_INO) == 0 || (!handle && !hasBirthTime))
        return std::nullopt;
    std::string text = handle ? *handle + ", " : std::string();
    text += formatted("inode {}", std::uint64_t{facts.stx_ino});
    if (hasBirthTime)
        text +=
            formatted(", born {}.{:09}", std::int64_t{facts.stx_btime.tv_sec}, std::uint32_t{facts.stx_btime.tv_nsec});
    return text;
}

// Not f_fsid: `statfs` waits for servers. The mount is preferred to the device: files of an overlay may be on other
// devices than their folder.
std::string volumeIdentifier(const struct statx& facts) {
    if ((facts.stx_mask & (uniqueMountMask | STATX_MNT_ID)) != 0)
        return formatted("mount {}", std::uint64_t{facts.stx_mnt_id});
    return formatted("device {}:{}", std::uint32_t{facts.stx_dev_major}, std::uint32_t{facts.stx_dev_minor});
}

} // namespace

FileFingerprint readFileFingerprint(int fd) {
    struct statx facts = {};
    if (statx(fd, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW,
              STATX_INO | STATX_MTIME | STATX_BTIME | STATX_MNT_ID | uniqueMountMask, &facts) != 0)
        return {};
    FileFingerprint fingerprint;
    if ((facts.stx_mask & STATX_MTIME) != 0)
        fingerprint.contentModificationDate = systemTimeFromUnix(facts.stx_mtime.tv_sec, facts.stx_mtime.tv_nsec);
    fingerprint.resourceIdentifier = resourceIdentifier(fileHandle(fd), facts);
    fingerprint.volumeIdentifier = volumeIdentifier(facts);
    return fingerprint;
}

} // namespace vantry
