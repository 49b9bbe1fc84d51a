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

std::optional<Error> refusalByPlace(PinnedPlace place) {
    switch (place) {
    case PinnedPlace::unchanged: return std::nullopt;
    case PinnedPlace::folderMoved: return Error{ErrorKind::invalid, "its folder is not to be found in its place"};
    case PinnedPlace::missing: return Error{ErrorKind::notFound, "it is not to be found in its place"};
    case PinnedPlace::link:
    case PinnedPlace::otherItem: break;
    }
    return Error{ErrorKind::invalid, "something else is in its place"};
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

Result<void> moveToTrash(const PinnedFile& file) {
    @autoreleasepool {
        const auto path = file.folder().path() / file.name();
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
        NSURL* result = nil;
        NSError* error = nil;
        // The system moves what the path leads to.
        if (auto refused = refusalByPlace(file.place()))
            return std::unexpected(std::move(*refused));
        if (![[NSFileManager defaultManager] trashItemAtURL:url resultingItemURL:&result error:&error])
            return std::unexpected(errorFromFoundation(error));
        const std::filesystem::path arrived = result ? result.fileSystemRepresentation : "";
        if (isAt(arrived, file.descriptor()))
            return {};
        std::string reason =
            result ? "something else was in its place" : "what arrived in the Trash could not be looked at";
        if (!putBack(arrived, file))
            reason += "; what was moved stays in the Trash";
        return std::unexpected(Error{ErrorKind::invalid, std::move(reason)});
    }
}

} // namespace vantry
