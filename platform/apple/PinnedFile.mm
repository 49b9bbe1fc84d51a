#include "platform/PinnedFile.h"

#include <Foundation/Foundation.h>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

// For events alone: nothing is fetched from a cloud, and a volume can be ejected meanwhile. Without waiting, for what
// may have become a pipe.
constexpr int itemFlags = O_EVTONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW_ANY | O_CLOEXEC;

PinFailure failureOf(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR: return PinFailure::missing;
    case ELOOP: return PinFailure::link;
    default: return PinFailure::unavailable;
    }
}

bool isWhole(const std::string& text) { return text.find('\0') == text.npos; }

// Two things of which one at least is held open: no file number is given to a second file meanwhile.
bool isSameItem(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool leadsTo(const std::filesystem::path& path, const struct stat& item) {
    struct stat found = {};
    return lstat(path.c_str(), &found) == 0 && isSameItem(found, item);
}

// Resource values are asked for by path only. What the path held before and after they were read has to be the item.
NSDictionary<NSURLResourceKey, id>* valuesOf(int item, const std::filesystem::path& path,
                                             NSArray<NSURLResourceKey>* keys) {
    struct stat held = {};
    if (fstat(item, &held) != 0 || !leadsTo(path, held))
        return nil;
    // A new URL for each request: a URL object remembers the values that it once answered.
    NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
    NSDictionary<NSURLResourceKey, id>* values = [url resourceValuesForKeys:keys error:nil];
    return leadsTo(path, held) ? values : nil;
}

std::optional<bool> flagIn(id value) {
    if (![value isKindOfClass:[NSNumber class]])
        return std::nullopt;
    return [value boolValue] != NO;
}

std::optional<std::int64_t> numberIn(id value) {
    if (![value isKindOfClass:[NSNumber class]])
        return std::nullopt;
    return [value longLongValue];
}

} // namespace

PinnedFolder::PinnedFolder(std::filesystem::path path, UniqueFd descriptor)
    : path_(std::move(path)),
      descriptor_(std::move(descriptor)) {}

std::expected<std::shared_ptr<const PinnedFolder>, PinFailure> PinnedFolder::open(const std::filesystem::path& path) {
    if (!path.is_absolute() || !isWhole(path.native()))
        return std::unexpected(PinFailure::unavailable);
    UniqueFd folder(::open(path.c_str(), folderFlags));
    if (!folder)
        return std::unexpected(failureOf(errno));
    return std::shared_ptr<const PinnedFolder>(new PinnedFolder(path, std::move(folder)));
}

bool PinnedFolder::isInPlace() const {
    struct stat found = {};
    struct stat pinned = {};
    const UniqueFd there(::open(path_.c_str(), folderFlags));
    return there && fstat(there.get(), &found) == 0 && fstat(descriptor(), &pinned) == 0 && isSameItem(found, pinned);
}

std::optional<PinnedFolderFacts> PinnedFolder::facts() const {
    @autoreleasepool {
        NSDictionary<NSURLResourceKey, id>* values =
            valuesOf(descriptor(), path_, @[ NSURLIsDirectoryKey, NSURLIsSymbolicLinkKey ]);
        if (!values)
            return std::nullopt;
        return PinnedFolderFacts{.isDirectory = flagIn(values[NSURLIsDirectoryKey]),
                                 .isSymbolicLink = flagIn(values[NSURLIsSymbolicLinkKey]),
                                 .volumeIdentifier = readFileFingerprint(descriptor()).volumeIdentifier};
    }
}

PinnedFile::PinnedFile(std::shared_ptr<const PinnedFolder> folder, std::string name, UniqueFd descriptor)
    : folder_(std::move(folder)),
      name_(std::move(name)),
      descriptor_(std::move(descriptor)) {}

std::expected<PinnedFile, PinFailure> PinnedFile::open(std::shared_ptr<const PinnedFolder> folder,
                                                       const std::string& name) {
    if (name.empty() || name == "." || name == ".." || name.find('/') != name.npos || !isWhole(name))
        return std::unexpected(PinFailure::unavailable);
    // Looked at before it is opened: to open a device may do something.
    struct stat seen = {};
    if (fstatat(folder->descriptor(), name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0)
        return std::unexpected(failureOf(errno));
    if (S_ISLNK(seen.st_mode))
        return std::unexpected(PinFailure::link);
    if (!S_ISREG(seen.st_mode) && !S_ISDIR(seen.st_mode))
        return std::unexpected(PinFailure::special);
    UniqueFd item(openat(folder->descriptor(), name.c_str(), itemFlags));
    if (!item)
        return std::unexpected(failureOf(errno));
    struct stat opened = {};
    if (fstat(item.get(), &opened) != 0 || !isSameItem(opened, seen))
        return std::unexpected(PinFailure::unavailable);
    return PinnedFile(std::move(folder), name, std::move(item));
}

std::optional<PinnedFileFacts> PinnedFile::facts() const {
    @autoreleasepool {
        struct stat held = {};
        NSDictionary<NSURLResourceKey, id>* values = valuesOf(descriptor(), folder_->path() / name_, @[
            NSURLIsRegularFileKey, NSURLIsSymbolicLinkKey, NSURLIsPackageKey, NSURLIsUbiquitousItemKey,
            NSURLFileAllocatedSizeKey, NSURLTotalFileAllocatedSizeKey
        ]);
        if (!values)
            return std::nullopt;
        PinnedFileFacts facts{.isRegularFile = flagIn(values[NSURLIsRegularFileKey]),
                              .isSymbolicLink = flagIn(values[NSURLIsSymbolicLinkKey]),
                              .isPackage = flagIn(values[NSURLIsPackageKey]),
                              .isUbiquitousItem = flagIn(values[NSURLIsUbiquitousItemKey]),
                              .allocatedBytes = numberIn(values[NSURLFileAllocatedSizeKey]),
                              .totalAllocated = numberIn(values[NSURLTotalFileAllocatedSizeKey])};
        if (fstat(descriptor(), &held) == 0) {
            facts.owner = held.st_uid;
            facts.contentBytes = held.st_size;
            // Both have to say so: the values came by path.
            facts.isRegularFile = facts.isRegularFile && *facts.isRegularFile && S_ISREG(held.st_mode);
        }
        // Last: the date tells of whatever was written while the rest was read.
        facts.fingerprint = readFileFingerprint(descriptor());
        return facts;
    }
}

PinnedPlace PinnedFile::place() const {
    return folder_->isInPlace() ? placeIn(folder_->descriptor(), name_) : PinnedPlace::folderMoved;
}

PinnedPlace PinnedFile::placeIn(int folder, const std::string& name) const {
    struct stat found = {};
    struct stat pinned = {};
    if (!isWhole(name) || fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0 ||
        fstat(descriptor(), &pinned) != 0)
        return PinnedPlace::missing;
    if (isSameItem(found, pinned))
        return PinnedPlace::unchanged;
    return S_ISLNK(found.st_mode) ? PinnedPlace::link : PinnedPlace::otherItem;
}

} // namespace vantry
