#include "platform/PinnedFile.h"

#include <cerrno>

namespace vantry {

namespace {

bool isWhole(const std::string& text) { return text.find('\0') == text.npos; }

} // namespace

std::expected<std::shared_ptr<const PinnedFolder>, PinFailure> PinnedFolder::open(const std::filesystem::path& path) {
    if (!path.is_absolute() || !isWhole(path.native()))
        return std::unexpected(PinFailure::unavailable);
    auto folder = opened(path.native());
    if (!folder)
        return std::unexpected(PinnedFile::failureOf(folder.error()));
    return std::shared_ptr<const PinnedFolder>(new PinnedFolder(path, std::move(*folder)));
}

std::expected<PinnedFile, PinFailure> PinnedFile::open(std::shared_ptr<const PinnedFolder> folder,
                                                       const std::string& name) {
    if (name.empty() || name == "." || name == ".." || name.find('/') != name.npos || !isWhole(name))
        return std::unexpected(PinFailure::unavailable);
    auto item = opened(folder->descriptor(), name);
    if (!item)
        return std::unexpected(item.error());
    return PinnedFile(std::move(folder), name, std::move(*item));
}

PinFailure PinnedFile::failureOf(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR: return PinFailure::missing;
    case ELOOP: return PinFailure::link;
    default: return PinFailure::unavailable;
    }
}

PinnedPlace PinnedFile::place() const {
    return folder_->isInPlace() ? placeIn(folder_->descriptor(), name_) : PinnedPlace::folderMoved;
}

// An empty name would mean the folder itself.
PinnedPlace PinnedFile::placeIn(int folder, const std::string& name) const {
    return name.empty() || !isWhole(name) ? PinnedPlace::missing : placeOf(folder, name);
}

} // namespace vantry
