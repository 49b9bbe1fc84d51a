#include "platform/PinnedFile.h"

#include <Foundation/Foundation.h>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

// O_EVTONLY downloads nothing from a cloud and does not keep a volume from being ejected. O_NONBLOCK because the item
// may have become a pipe.
constexpr int itemFlags = O_EVTONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW_ANY | O_CLOEXEC;

// At least one of the two is held open, so its file number cannot be reused.
bool isSameItem(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool leadsTo(const std::filesystem::path& path, const struct stat& item) {
    struct stat found = {};
    return lstat(path.c_str(), &found) == 0 && isSameItem(found, item);
}

// Resource values can only be read by path. The path must lead to the item before and after they were read.
NSDictionary<NSURLResourceKey, id>* valuesOf(int item, const std::filesystem::path& path,
                                             NSArray<NSURLResourceKey>* keys) {
    struct stat held = {};
    if (fstat(item, &held) != 0 || !leadsTo(path, held))
        return nil;
    // A new URL for each request: a URL object caches its values.
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

std::expected<UniqueFd, int> PinnedFolder::opened(const std::string& path) {
    UniqueFd folder(::open(path.c_str(), folderFlags));
    if (!folder)
        return std::unexpected(errno);
    return folder;
}

bool PinnedFolder::isInPlace() const {
    struct stat found = {};
    struct stat pinned = {};
    const auto there = opened(path_.native());
    return there && fstat(there->get(), &found) == 0 && fstat(descriptor(), &pinned) == 0 && isSameItem(found, pinned);
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

std::expected<UniqueFd, PinFailure> PinnedFile::opened(int folder, const std::string& name) {
    // Checked before it is opened: opening a device may have effects.
    struct stat seen = {};
    if (fstatat(folder, name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0)
        return std::unexpected(failureOf(errno));
    if (S_ISLNK(seen.st_mode))
        return std::unexpected(PinFailure::link);
    if (!S_ISREG(seen.st_mode) && !S_ISDIR(seen.st_mode))
        return std::unexpected(PinFailure::special);
    UniqueFd item(openat(folder, name.c_str(), itemFlags));
    if (!item)
        return std::unexpected(failureOf(errno));
    struct stat opened = {};
    if (fstat(item.get(), &opened) != 0 || !isSameItem(opened, seen))
        return std::unexpected(PinFailure::unavailable);
    return item;
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
            // Both sources must agree, because the values were read by path.
            facts.isRegularFile = facts.isRegularFile && *facts.isRegularFile && S_ISREG(held.st_mode);
        }
        // Last, so that the date covers writes that happened while the rest was read.
        facts.fingerprint = readFileFingerprint(descriptor());
        return facts;
    }
}

PinnedPlace PinnedFile::placeOf(int folder, const std::string& name) const {
    struct stat found = {};
    struct stat pinned = {};
    if (fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0 || fstat(descriptor(), &pinned) != 0)
        return PinnedPlace::missing;
    if (isSameItem(found, pinned))
        return PinnedPlace::unchanged;
    return S_ISLNK(found.st_mode) ? PinnedPlace::link : PinnedPlace::otherItem;
}

} // namespace vantry
