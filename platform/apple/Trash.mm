#include "platform/Trash.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <array>
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

TrashMove notMoved(std::string reason) {
    return {.outcome = TrashMove::Outcome::notMoved, .reason = std::move(reason)};
}

std::optional<std::string> refusalByPlace(PinnedPlace place) {
    switch (place) {
    case PinnedPlace::unchanged: return std::nullopt;
    case PinnedPlace::folderMoved: return "its folder is not to be found in its place";
    case PinnedPlace::missing: return "it is not to be found in its place";
    case PinnedPlace::link:
    case PinnedPlace::otherItem: break;
    }
    return "something else is in its place";
}

// By its number. Who may not look into the Trash is told by the system where the descriptor's file is.
bool isAt(const std::filesystem::path& path, int item) {
    struct stat found = {};
    struct stat held = {};
    if (lstat(path.c_str(), &found) == 0)
        return fstat(item, &held) == 0 && found.st_dev == held.st_dev && found.st_ino == held.st_ino;
    std::array<char, MAXPATHLEN> where{};
    return fcntl(item, F_GETPATH, where.data()) == 0 && path == where.data();
}

bool putBack(const std::filesystem::path& arrived, const PinnedFile& file) {
    return renameatx_np(AT_FDCWD, arrived.c_str(), file.folder().descriptor(), file.name().c_str(), RENAME_EXCL) == 0;
}

} // namespace

TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked) {
    @autoreleasepool {
        const auto path = file.folder().path() / file.name();
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
        NSURL* result = nil;
        NSError* error = nil;
        // The system moves what the path leads to.
        if (auto refused = refusalByPlace(file.place()))
            return notMoved(std::move(*refused));
        const auto current = file.facts();
        if (!current || current->contentBytes != checked.contentBytes ||
            current->fingerprint.contentModificationDate != checked.fingerprint.contentModificationDate)
            return notMoved("it was modified after the scan");
        if (![[NSFileManager defaultManager] trashItemAtURL:url resultingItemURL:&result error:&error])
            return notMoved(errorFromFoundation(error).message);
        const std::filesystem::path arrived = result ? result.fileSystemRepresentation : "";
        if (isAt(arrived, file.descriptor()))
            return {.outcome = TrashMove::Outcome::moved};
        std::string reason =
            result ? "something else was in its place" : "what arrived in the Trash could not be looked at";
        if (!putBack(arrived, file))
            return {TrashMove::Outcome::misplaced, std::move(reason), arrived};
        return notMoved(std::move(reason));
    }
}

} // namespace vantry
