#include "platform/ItemFacts.h"

#include "base/Utf8.h"
#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <sys/stat.h>
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

std::optional<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    struct stat said = {};
    if (lstat(path.c_str(), &said) != 0)
        return std::nullopt;
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

bool isFolder(const std::filesystem::path& path) {
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

bool isReadableFolder(const std::filesystem::path& path) { return isFolder(path) && access(path.c_str(), R_OK) == 0; }

std::string displayName(const std::filesystem::path& path) {
    @autoreleasepool {
        NSString* name = foundationText(path.native());
        const auto shown = name ? textFromFoundation([NSFileManager.defaultManager displayNameAtPath:name]) : "";
        return !shown.empty() ? shown : withReplacementCharacters(path.filename().native());
    }
}

} // namespace vantry
