#include "platform/linux/TrashInfoFile.h"

#include "base/Format.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "base/WriteAll.h"
#include "platform/linux/TrashFolders.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr std::size_t longestExtension = 32; // bytes, with its dot; anything longer is part of the name

std::string_view extensionOf(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == name.npos || dot == 0 || name.size() - dot > longestExtension)
        return {};
    return name.substr(dot);
}

std::string_view shortened(std::string_view text, std::size_t size) {
    std::string_view begin = text.substr(0, size);
    if (isUtf8(text)) {
        while (!isUtf8(begin))
            begin.remove_suffix(1);
    }
    return begin;
}

} // namespace

std::string trashInfoText(const std::filesystem::path& origin, const std::tm& deleted) {
    return formatted("[Trash Info]\nPath={}\nDeletionDate={:04}-{:02}-{:02}T{:02}:{:02}:{:02}\n",
                     percentEncoded(origin.native()), deleted.tm_year + 1900, deleted.tm_mon + 1, deleted.tm_mday,
                     deleted.tm_hour, deleted.tm_min, deleted.tm_sec);
}

std::string trashName(std::string_view name, std::string_view tag, std::size_t limit) {
    const std::string_view extension = extensionOf(name);
    const std::string_view stem = name.substr(0, name.size() - extension.size());
    std::string end;
    if (!tag.empty())
        end.append(".").append(tag);
    end += extension;
    return std::string(shortened(stem, limit - std::min(limit, end.size()))) + end;
}

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
