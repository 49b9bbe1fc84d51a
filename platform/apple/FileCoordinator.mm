#include "platform/FileCoordinator.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <string>
#include <sys/stat.h>

namespace vantry {

namespace {

std::filesystem::path normalPath(const std::filesystem::path& path) {
    auto normal = path.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

// As the system's file systems compare names.
std::string composedName(const std::filesystem::path& path) {
    NSString* name =
        [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path.filename().c_str()
                                                                    length:path.filename().native().size()];
    return textFromFoundation([name precomposedStringWithCanonicalMapping]);
}

bool isSameFolder(const std::filesystem::path& one, const std::filesystem::path& other) {
    struct stat oneFolder = {};
    struct stat otherFolder = {};
    return lstat(one.c_str(), &oneFolder) == 0 && lstat(other.c_str(), &otherFolder) == 0 &&
           oneFolder.st_dev == otherFolder.st_dev && oneFolder.st_ino == otherFolder.st_ino;
}

} // namespace

Result<void> coordinateMoving(const std::filesystem::path& file,
                              const std::function<void(const std::filesystem::path&)>& accessor) {
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:file.c_str() isDirectory:NO relativeToURL:nil];
        NSFileCoordinator* coordinator = [[NSFileCoordinator alloc] initWithFilePresenter:nil];
        const auto* call = &accessor;
        __block bool isCalled = false;
        NSError* error = nil;
        [coordinator coordinateWritingItemAtURL:url
                                        options:NSFileCoordinatorWritingForMoving
                                          error:&error
                                     byAccessor:^(NSURL* newURL) {
                                         if (isCalled)
                                             return;
                                         isCalled = true;
                                         (*call)(std::filesystem::path(newURL.fileSystemRepresentation));
                                     }];
        if (!isCalled)
            return std::unexpected(errorFromFoundation(error));
        return {};
    }
}

bool isSamePlace(const std::filesystem::path& one, const std::filesystem::path& other) {
    @autoreleasepool {
        const auto onePath = normalPath(one);
        const auto otherPath = normalPath(other);
        if (!onePath.is_absolute() || onePath == otherPath)
            return onePath.is_absolute();
        const auto name = composedName(onePath);
        return !name.empty() && name == composedName(otherPath) &&
               isSameFolder(onePath.parent_path(), otherPath.parent_path());
    }
}

} // namespace vantry
