#include "platform/FileCoordinator.h"

#include "base/StandardizedPath.h"
#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <string>
#include <sys/stat.h>

namespace vantry {

namespace {

// The system returns decomposed names, and file systems find a file by either form. Empty if it is not valid text.
std::string composed(const std::filesystem::path& path) {
    NSString* text = [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path.c_str()
                                                                                 length:path.native().size()];
    return textFromFoundation([text precomposedStringWithCanonicalMapping]);
}

bool isSameText(const std::filesystem::path& one, const std::filesystem::path& other) {
    const auto text = composed(one);
    return one == other || (!text.empty() && text == composed(other));
}

// If a folder cannot be looked at, such as the Trash without the user's consent, the paths are compared.
bool isSameFolder(const std::filesystem::path& one, const std::filesystem::path& other) {
    struct stat oneFacts = {};
    struct stat otherFacts = {};
    if (stat(one.c_str(), &oneFacts) != 0 || stat(other.c_str(), &otherFacts) != 0)
        return isSameText(one, other);
    return oneFacts.st_dev == otherFacts.st_dev && oneFacts.st_ino == otherFacts.st_ino;
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
        const auto onePath = standardizedPath(one);
        const auto otherPath = standardizedPath(other);
        return onePath.is_absolute() && otherPath.is_absolute() &&
               isSameText(onePath.filename(), otherPath.filename()) &&
               isSameFolder(onePath.parent_path(), otherPath.parent_path());
    }
}

} // namespace vantry
