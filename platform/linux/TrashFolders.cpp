#include "platform/linux/TrashFolders.h"

#include "base/Result.h"

#include <expected>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr const char* filesName = "files";
constexpr const char* infoName = "info";
constexpr mode_t ownRights = 0700;
constexpr auto cannotOpen = "the Trash could not be opened";

using Opened = std::expected<UniqueFd, int>;            // the error is an errno
using OwnFolder = std::expected<UniqueFd, std::string>; // the error is a phrase

std::string reasonOf(int errorNumber) {
    switch (errorNumber) {
    case EACCES:
    case EPERM: return "the system does not permit it";
    case EROFS: return "the disk is read-only";
    case ENOSPC: return "the disk is full";
    case EDQUOT: return "your share of the disk is used up";
    case EIO: return "the disk reports an error";
    case EMFILE:
    case ENFILE: return "too many files are open";
    case ENOMEM: return "memory is short";
    case ENAMETOOLONG: return "a name is too long";
    case EMLINK: return "a folder holds too many others";
    case EFBIG: return "a file may not be that large";
    case EBUSY:
    case ETXTBSY: return "it is in use";
    case EINTR:
    case EAGAIN: return "the system was busy";
    case ENOENT: return "it no longer exists";
    case EINVAL:
    case ENOSYS:
    case ENOTSUP: return "the file system does not offer a safe way";
    default: break;
    }
    return errorFromErrno(errorNumber).message;
}

std::expected<UniqueFd, int> opened(int folder, const char* name, int flags) {
    UniqueFd fd;
    const int error = errorOf([&] {
        fd.reset(openat(folder, name, flags | O_CLOEXEC));
        return fd.get();
    });
    if (error != 0)
        return std::unexpected(error);
    return fd;
}

// `parent` may be open with O_PATH. EEXIST counts as success: another process created it first.
int makeFolder(int parent, const char* name) {
    const int error = errorOf([&] { return mkdirat(parent, name, ownRights); });
    if (error != 0)
        return error == EEXIST ? 0 : error;
    const auto readable = opened(parent, ".", O_RDONLY | O_DIRECTORY);
    return readable ? syncToDisk(readable->get()) : readable.error();
}

// Links are followed: a user may keep such a folder elsewhere.
Opened openDataFolder(const std::filesystem::path& path) {
    auto folder = opened(AT_FDCWD, path.c_str(), O_PATH | O_DIRECTORY);
    if (folder || folder.error() != ENOENT || !path.has_relative_path())
        return folder;
    auto parent = openDataFolder(path.parent_path());
    if (!parent)
        return parent;
    const std::string name = path.filename().native();
    if (const int error = makeFolder(parent->get(), name.c_str()))
        return std::unexpected(error);
    return opened(parent->get(), name.c_str(), O_PATH | O_DIRECTORY);
}

OwnFolder openOwnFolder(int parent, const char* name) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
    auto folder = opened(parent, name, flags);
    if (!folder && folder.error() == ENOENT) {
        if (const int error = makeFolder(parent, name))
            return std::unexpected(trashError("the Trash could not be made", error));
        folder = opened(parent, name, flags);
    }
    if (!folder && (folder.error() == ELOOP || folder.error() == ENOTDIR))
        return std::unexpected("the Trash is a link or not a folder");
    if (!folder)
        return std::unexpected(trashError(cannotOpen, folder.error()));
    struct stat facts = {};
    if (fstat(folder->get(), &facts) != 0)
        return std::unexpected(trashError(cannotOpen, errno));
    if (facts.st_uid != geteuid())
        return std::unexpected("the Trash belongs to another user");
    return std::move(*folder);
}

bool leadsTo(int folder, const char* name, int fd) {
    struct stat found = {};
    struct stat held = {};
    return fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && fstat(fd, &held) == 0 &&
           found.st_dev == held.st_dev && found.st_ino == held.st_ino;
}

} // namespace

std::string trashError(std::string_view what, int errorNumber) {
    return std::string(what) + ": " + reasonOf(errorNumber);
}

int syncToDisk(int fd) {
    const int error = errorOf([fd] { return fsync(fd); });
    return error == EINVAL || error == ENOSYS || error == ENOTSUP ? 0 : error;
}

std::optional<std::filesystem::path> pathOfDescriptor(int fd) {
    std::error_code error;
    auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), error);
    return error ? std::nullopt : std::optional(std::move(path));
}

TrashFolders::TrashFolders(std::filesystem::path path, UniqueFd trash, UniqueFd files, UniqueFd info)
    : path_(std::move(path)),
      trash_(std::move(trash)),
      files_(std::move(files)),
      info_(std::move(info)) {}

std::expected<TrashFolders, std::string> TrashFolders::open(const std::filesystem::path& trash) {
    const auto data = openDataFolder(trash.parent_path());
    if (!data)
        return std::unexpected(trashError(cannotOpen, data.error()));
    auto itself = openOwnFolder(data->get(), trash.filename().c_str());
    if (!itself)
        return std::unexpected(itself.error());
    auto files = openOwnFolder(itself->get(), filesName);
    if (!files)
        return std::unexpected(files.error());
    auto info = openOwnFolder(itself->get(), infoName);
    if (!info)
        return std::unexpected(info.error());
    return TrashFolders(trash, std::move(*itself), std::move(*files), std::move(*info));
}

std::filesystem::path TrashFolders::itemPath(const std::string& name) const {
    return pathOfDescriptor(files()).value_or(path_ / filesName) / name;
}

bool TrashFolders::areInPlace() const {
    return leadsTo(AT_FDCWD, path_.c_str(), trash_.get()) && leadsTo(trash_.get(), filesName, files()) &&
           leadsTo(trash_.get(), infoName, info());
}

} // namespace vantry
