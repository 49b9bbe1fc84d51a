#include "platform/FileCoordinator.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>

namespace vantry {

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

} // namespace vantry
