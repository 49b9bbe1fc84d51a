#include "platform/linux/VolumeCapacity.h"

#include "base/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace vantry {

namespace {

constexpr auto largestAmount = std::numeric_limits<std::int64_t>::max();

std::int64_t bytesOfBlocks(std::uint64_t blocks, std::uint64_t blockSize) {
    std::uint64_t bytes = 0;
    if (__builtin_mul_overflow(blocks, blockSize, &bytes) || bytes > static_cast<std::uint64_t>(largestAmount))
        return largestAmount;
    return static_cast<std::int64_t>(bytes);
}

// On ext4, XFS, Btrfs and F2FS anybody who can open a folder can read the label.
std::optional<std::string> labelFromFileSystem(const std::filesystem::path& path) {
    const UniqueFd folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    char label[FSLABEL_MAX + 1] = {};
    if (!folder || ioctl(folder.get(), FS_IOC_GETFSLABEL, label) != 0 || label[0] == '\0')
        return std::nullopt;
    return label;
}

std::optional<std::string> labelFromUdev(const std::filesystem::path& path) {
    struct stat volume = {};
    if (stat(path.c_str(), &volume) != 0)
        return std::nullopt;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/disk/by-label", ignored)) {
        struct stat device = {};
        if (stat(entry.path().c_str(), &device) == 0 && S_ISBLK(device.st_mode) && device.st_rdev == volume.st_dev)
            return decodedUdevName(entry.path().filename().native());
    }
    return std::nullopt;
}

std::optional<std::string> volumeLabel(const std::filesystem::path& path) {
    auto label = labelFromFileSystem(path);
    return label ? label : labelFromUdev(path);
}

} // namespace

VolumeCapacity capacityFromStatvfs(const struct statvfs& said) {
    const std::uint64_t blockSize = said.f_frsize != 0 ? said.f_frsize : said.f_bsize;
    // A file system that miscounts or is being shrunk may report more available blocks than free ones.
    const std::uint64_t reserved = said.f_bfree - std::min(said.f_bfree, said.f_bavail);
    return {.name = std::nullopt,
            .totalBytes = bytesOfBlocks(said.f_blocks - std::min(said.f_blocks, reserved), blockSize),
            .availableBytes = bytesOfBlocks(said.f_bavail, blockSize),
            .availableForImportantUsageBytes = std::nullopt,
            .reservedBytes = bytesOfBlocks(reserved, blockSize)};
}

std::string decodedUdevName(std::string_view name) {
    std::string decoded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        unsigned char byte = 0;
        const auto hex = name.substr(i, 4);
        if (hex.size() == 4 && hex.starts_with("\\x") &&
            std::from_chars(hex.data() + 2, hex.data() + 4, byte, 16).ptr == hex.data() + 4) {
            decoded.push_back(static_cast<char>(byte));
            i += 3;
        } else {
            decoded.push_back(name[i]);
        }
    }
    return decoded;
}

Result<VolumeCapacity> readVolumeCapacity(const std::filesystem::path& path) {
    struct statvfs said = {};
    int status = 0;
    do
        status = statvfs(path.c_str(), &said);
    while (status != 0 && errno == EINTR);
    if (status != 0)
        return std::unexpected(errorFromErrno(errno)); // the caller shows it after its own words
    VolumeCapacity capacity = capacityFromStatvfs(said);
    capacity.name = volumeLabel(path).value_or("File System");
    return capacity;
}

// Linux has one source for both.
Result<VolumeCapacity> readFileSystemAttributes(const std::filesystem::path& path) { return readVolumeCapacity(path); }

} // namespace vantry
