#include "platform/FoundItem.h"

#include <array>
#include <fcntl.h>
#include <sys/param.h>
#include <sys/stat.h>

namespace vantry {

namespace {

bool isSameItem(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

// Resource values can only be read by path. The path must lead to the item before and after they were read.
FileFingerprint readFileFingerprint(int fd) {
    std::array<char, MAXPATHLEN> path{};
    struct stat item = {};
    struct stat before = {};
    struct stat after = {};
    if (fstat(fd, &item) != 0 || fcntl(fd, F_GETPATH, path.data()) != 0 || lstat(path.data(), &before) != 0)
        return {};
    const FileFingerprint fingerprint = readFileFingerprint(std::filesystem::path(path.data()));
    if (lstat(path.data(), &after) != 0 || !isSameItem(item, before) || !isSameItem(item, after))
        return {};
    return fingerprint;
}

} // namespace vantry
