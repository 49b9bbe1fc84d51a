#include "platform/Trash.h"
#include "platform/TrashRetention.h"

#include "platform/FileCoordinator.h"
#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/param.h>
#include <sys/stat.h>
#include <utility>

namespace vantry {

namespace {

constexpr auto modified = "it was modified after the scan";

TrashMove misplaced(std::string reason, std::filesystem::path path) {
    return {TrashMove::Outcome::misplaced, std::move(reason), std::move(path)};
}

bool isSameItem(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool isSameContent(const struct stat& one, const struct stat& other) {
    return one.st_size == other.st_size && one.st_mtimespec.tv_sec == other.st_mtimespec.tv_sec &&
           one.st_mtimespec.tv_nsec == other.st_mtimespec.tv_nsec;
}

bool isAsChecked(const PinnedFile& file, const PinnedFileFacts& checked) {
    const auto current = file.facts();
    return current && current->contentBytes == checked.contentBytes &&
           current->allocatedBytes == checked.allocatedBytes && current->totalAllocated == checked.totalAllocated &&
           current->fingerprint.contentModificationDate == checked.fingerprint.contentModificationDate;
}

// Empty for an item without a name. Without permission to look into the Trash the system's answer is taken.
std::filesystem::path whereabouts(const PinnedFile& file) {
    std::array<char, MAXPATHLEN> path{};
    struct stat held = {};
    struct stat found = {};
    if (fcntl(file.descriptor(), F_GETPATH, path.data()) != 0 || fstat(file.descriptor(), &held) != 0)
        return {};
    const bool isThere = lstat(path.data(), &found) == 0 ? isSameItem(found, held) : errno == EPERM || errno == EACCES;
    return isThere ? path.data() : "";
}

bool isInTrash(const std::filesystem::path& path, NSURL* origin) {
    NSURL* trash = [[NSFileManager defaultManager] URLForDirectory:NSTrashDirectory
                                                          inDomain:NSUserDomainMask
                                                 appropriateForURL:origin
                                                            create:NO
                                                             error:nil];
    return trash && isSamePlace(path, std::filesystem::path(trash.fileSystemRepresentation) / path.filename());
}

bool putBack(const std::filesystem::path& arrived, const PinnedFile& file) {
    return renameatx_np(AT_FDCWD, arrived.c_str(), file.folder().descriptor(), file.name().c_str(), RENAME_EXCL) == 0;
}

// For a move that left nothing in the Trash.
TrashMove leftOrTaken(const PinnedFile& file, std::string reason) {
    if (file.placeIn(file.folder().descriptor(), file.name()) == PinnedPlace::unchanged)
        return TrashMove::notMoved(std::move(reason));
    auto where = whereabouts(file);
    if (where.empty())
        reason = "another program removed it from the Trash";
    return misplaced(std::move(reason), std::move(where));
}

// For a move that put something into the Trash.
TrashMove putBackWhatArrived(const std::filesystem::path& arrived, const PinnedFile& file) {
    struct stat found = {};
    const int error = lstat(arrived.c_str(), &found) == 0 ? 0 : errno;
    if (error == ENOENT)
        return leftOrTaken(file, "another program took it out of the Trash");
    std::string reason =
        error == 0 ? "something else was in its place" : "what arrived in the Trash could not be looked at";
    return putBack(arrived, file) ? TrashMove::notMoved(std::move(reason)) : misplaced(std::move(reason), arrived);
}

} // namespace

TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked) {
    @autoreleasepool {
        const auto path = file.folder().path() / file.name();
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
        NSURL* result = nil;
        NSError* error = nil;
        struct stat before = {};
        struct stat after = {};
        // The system moves whatever the path leads to.
        if (auto refused = refusalByPlace(file.place()))
            return TrashMove::notMoved(std::move(*refused));
        if (fstat(file.descriptor(), &before) != 0 || !isAsChecked(file, checked))
            return TrashMove::notMoved(modified);
        const bool isDone = [[NSFileManager defaultManager] trashItemAtURL:url resultingItemURL:&result error:&error];

        // The descriptor tells where the file is, whatever the system returned.
        const auto where = whereabouts(file);
        const std::filesystem::path arrived = isDone && result ? result.fileSystemRepresentation : "";
        if (!where.empty() && (arrived.empty() ? isInTrash(where, url) : isSamePlace(where, arrived))) {
            const bool isUnchanged = fstat(file.descriptor(), &after) == 0 && isSameContent(before, after);
            if (!isUnchanged && putBack(where, file))
                return TrashMove::notMoved(modified);
            return {.outcome = TrashMove::Outcome::moved};
        }
        if (!arrived.empty())
            return putBackWhatArrived(arrived, file);
        std::string reason = isDone ? "the system did not say where it is" : errorFromFoundation(error).message;
        // An error and no file: another process was quicker.
        return !isDone && where.empty() ? TrashMove::notMoved(std::move(reason)) : leftOrTaken(file, std::move(reason));
    }
}

// Only the guide of Linux says so.
std::optional<std::chrono::days> trashRetention(const std::shared_ptr<StopSwitch>& /*stopSwitch*/) {
    return std::nullopt;
}

} // namespace vantry
