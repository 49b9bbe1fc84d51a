#include "platform/ItemFacts.h"

#include "base/Utf8.h"
#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vantry {

namespace {

// The figures of the resource values, since those are what a file's size is compared with before it is moved.
std::optional<std::int64_t> allocatedBytes(const std::filesystem::path& path) {
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
        NSDictionary<NSURLResourceKey, id>* values =
            [url resourceValuesForKeys:@[ NSURLTotalFileAllocatedSizeKey, NSURLFileAllocatedSizeKey ] error:nil];
        for (NSURLResourceKey key in @[ NSURLTotalFileAllocatedSizeKey, NSURLFileAllocatedSizeKey ])
            if (id value = values[key]; [value isKindOfClass:[NSNumber class]])
                return [value longLongValue];
        return std::nullopt;
    }
}

} // namespace

Result<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    struct stat said = {};
    if (lstat(path.c_str(), &said) != 0)
        return std::unexpected(errorFromErrno(errno));
    ItemFacts facts;
    facts.kind = S_ISREG(said.st_mode)   ? ItemFacts::Kind::regularFile
                 : S_ISDIR(said.st_mode) ? ItemFacts::Kind::folder
                 : S_ISLNK(said.st_mode) ? ItemFacts::Kind::symbolicLink
                                         : ItemFacts::Kind::other;
    facts.contentModificationDate = systemTimeFromUnix(said.st_mtimespec.tv_sec, said.st_mtimespec.tv_nsec);
    if (facts.kind == ItemFacts::Kind::regularFile)
        facts.allocatedBytes = allocatedBytes(path);
    return facts;
}

FolderAccess folderAccess(const std::filesystem::path& path) {
    struct stat facts = {};
    if (stat(path.c_str(), &facts) != 0)
        switch (errno) {
        case ENOENT:
        case ENOTDIR:
        case ELOOP:
        case ENAMETOOLONG: return FolderAccess::none;
        case EACCES:
        case EPERM: return FolderAccess::unreadable;
        default: return FolderAccess::unknown;
        }
    if (!S_ISDIR(facts.st_mode))
        return FolderAccess::none;
    return access(path.c_str(), R_OK) == 0 ? FolderAccess::readable : FolderAccess::unreadable;
}

bool isReadableFile(const std::filesystem::path& path) {
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode) && access(path.c_str(), R_OK) == 0;
}

Result<std::filesystem::path> resolvedPath(const std::filesystem::path& path) {
    std::error_code error;
    auto resolved = std::filesystem::canonical(path, error);
    if (error)
        return std::unexpected(errorFromErrno(error.value()));
    return resolved;
}

std::string displayName(const std::filesystem::path& path) {
    @autoreleasepool {
        NSString* name = foundationText(path.native());
        const auto shown = name ? textFromFoundation([NSFileManager.defaultManager displayNameAtPath:name]) : "";
        return !shown.empty() ? shown : withReplacementCharacters(path.filename().native());
    }
}

} // namespace vantry
