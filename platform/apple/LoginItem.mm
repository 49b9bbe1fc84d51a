#include "platform/LoginItem.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>

namespace vantry {

Result<std::filesystem::path> runningApplicationPath() {
    @autoreleasepool {
        NSBundle* bundle = [NSBundle mainBundle];
        // The main bundle of an executable outside of a bundle is its folder, without an identifier.
        NSURL* application = bundle.bundleIdentifier ? bundle.bundleURL : bundle.executableURL;
        if (!application)
            return std::unexpected(Error{ErrorKind::notFound, "The path of the application is unknown."});
        return std::filesystem::path(application.fileSystemRepresentation);
    }
}

std::vector<std::filesystem::path> installedApplicationPaths() { return {"/Applications/Ombrel.app"}; }

bool isApplication(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

std::optional<std::filesystem::path> autostartFile(const std::string&) { return std::nullopt; }

Result<std::string> autostartEntry(const std::string&, const std::filesystem::path&) {
    return std::unexpected(Error{ErrorKind::unsupported, "macOS has no autostart entries."});
}

bool autostartEntryIsHonoured(std::string_view) { return false; }

bool autostartEntryStarts(std::string_view, const std::filesystem::path&) { return false; }

} // namespace vantry
