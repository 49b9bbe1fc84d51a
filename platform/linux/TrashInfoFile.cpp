#include "platform/linux/TrashInfoFile.h"

#include "platform/linux/TrashEntry.h"
#include "platform/linux/TrashFolders.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

int writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        ssize_t written = 0;
        if (const int error = errorOf([&] { return written = ::write(fd, text.data(), text.size()); }))
            return error;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

} // namespace

TrashInfoFile::TrashInfoFile(int folder, std::string itemName, UniqueFd info, const struct stat& facts)
    : folder_(folder),
      itemName_(std::move(itemName)),
      info_(std::move(info)),
      device_(facts.st_dev),
      number_(facts.st_ino) {}

std::expected<TrashInfoFile, int> TrashInfoFile::write(int folder, const std::string& name, std::string_view text) {
    UniqueFd fd;
    struct stat facts = {};
    int error = errorOf([&] {
        fd.reset(openat(folder, (name + std::string(trashInfoSuffix)).c_str(),
                        O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        return fd.get();
    });
    if (error == 0)
        error = errorOf([&] { return fstat(fd.get(), &facts); });
    if (error != 0)
        return std::unexpected(error);
    TrashInfoFile info(folder, name, std::move(fd), facts);
    error = writeAll(info.info_.get(), text);
    if (error == 0)
        error = syncToDisk(info.info_.get());
    if (error == 0)
        error = syncToDisk(folder);
    if (error == 0)
        return info;
    info.remove();
    return std::unexpected(error);
}

std::string TrashInfoFile::name() const { return itemName_ + std::string(trashInfoSuffix); }

bool TrashInfoFile::isInPlace() const {
    struct stat found = {};
    return fstatat(folder_, name().c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 && found.st_dev == device_ &&
           found.st_ino == number_;
}

void TrashInfoFile::remove() const {
    if (isInPlace())
        unlinkat(folder_, name().c_str(), 0);
}

} // namespace vantry
