#include "platform/FoundItem.h"

#include "base/UniqueFd.h"
#include "base/Utf8.h"
#include "platform/apple/FoundationValues.h"
#include "platform/apple/PromptLookup.h"

#include <Foundation/Foundation.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

std::optional<SystemTime> dateIn(id value) {
    if (![value isKindOfClass:[NSDate class]])
        return std::nullopt;
    constexpr std::int64_t referenceDate = 978'307'200; // the start of 2001, in seconds since 1970
    constexpr double faraway = 1e12;                    // seconds; far outside the range of SystemTime
    const double interval = std::clamp([value timeIntervalSinceReferenceDate], -faraway, faraway);
    const double seconds = std::floor(interval);
    const auto nanoseconds = std::min(std::lround((interval - seconds) * 1e9), 999'999'999L);
    return systemTimeFromUnix(referenceDate + static_cast<std::int64_t>(seconds), nanoseconds);
}

std::optional<std::string> descriptionOf(id value) {
    if (!value)
        return std::nullopt;
    return textFromFoundation([value description]);
}

// A new URL for each request: a URL object caches its values.
NSDictionary<NSURLResourceKey, id>* resourceValues(const std::filesystem::path& path, NSArray<NSURLResourceKey>* keys) {
    NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
    return [url resourceValuesForKeys:keys error:nil];
}

// From the resource values, because a file's size is compared with these before it is moved.
std::optional<std::int64_t> allocatedBytes(NSDictionary<NSURLResourceKey, id>* values) {
    for (NSURLResourceKey key in @[ NSURLTotalFileAllocatedSizeKey, NSURLFileAllocatedSizeKey ])
        if (id value = values[key]; [value isKindOfClass:[NSNumber class]])
            return [value longLongValue];
    return std::nullopt;
}

ItemFacts::Kind kindIn(NSDictionary<NSURLResourceKey, id>* values) {
    const auto is = [&](NSURLResourceKey key) {
        id value = values[key];
        return [value isKindOfClass:[NSNumber class]] && [value boolValue];
    };
    return is(NSURLIsSymbolicLinkKey)  ? ItemFacts::Kind::symbolicLink
           : is(NSURLIsRegularFileKey) ? ItemFacts::Kind::regularFile
           : is(NSURLIsDirectoryKey)   ? ItemFacts::Kind::folder
                                       : ItemFacts::Kind::other;
}

// EAGAIN means that a server or another process would have to be waited for.
Error lookupError(int errorNumber) { return errorFromErrno(errorNumber == EAGAIN ? ETIMEDOUT : errorNumber); }

FolderAccess accessAfter(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG: return FolderAccess::none;
    case EACCES:
    case EPERM: return FolderAccess::unreadable;
    default: return FolderAccess::unknown;
    }
}

} // namespace

Result<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    const auto item = promptPath(path, FinalLink::isKept);
    struct stat said = {};
    if (!item || lstat(item->c_str(), &said) != 0)
        return std::unexpected(lookupError(item ? errno : item.error()));
    ItemFacts facts;
    facts.kind = S_ISREG(said.st_mode)   ? ItemFacts::Kind::regularFile
                 : S_ISDIR(said.st_mode) ? ItemFacts::Kind::folder
                 : S_ISLNK(said.st_mode) ? ItemFacts::Kind::symbolicLink
                                         : ItemFacts::Kind::other;
    facts.contentModificationDate = systemTimeFromUnix(said.st_mtimespec.tv_sec, said.st_mtimespec.tv_nsec);
    if (facts.kind == ItemFacts::Kind::regularFile)
        @autoreleasepool {
            facts.allocatedBytes =
                allocatedBytes(resourceValues(*item, @[ NSURLTotalFileAllocatedSizeKey, NSURLFileAllocatedSizeKey ]));
        }
    return facts;
}

// Everything comes from one request.
Result<FoundItem> readFoundItem(const std::filesystem::path& path,
                                const std::function<bool(const ItemFacts&)>& isWanted) {
    const auto place = promptPath(path, FinalLink::isKept);
    if (!place)
        return std::unexpected(lookupError(place.error()));
    @autoreleasepool {
        NSArray<NSURLResourceKey>* keys = @[
            NSURLIsSymbolicLinkKey, NSURLIsRegularFileKey, NSURLIsDirectoryKey, NSURLContentModificationDateKey,
            NSURLFileResourceIdentifierKey, NSURLVolumeIdentifierKey, NSURLTotalFileAllocatedSizeKey,
            NSURLFileAllocatedSizeKey
        ];
        NSDictionary<NSURLResourceKey, id>* values = resourceValues(*place, keys);
        if (!values)
            return std::unexpected(Error{ErrorKind::system, "The item could not be looked at."});
        FoundItem item;
        item.facts.kind = kindIn(values);
        item.facts.contentModificationDate = dateIn(values[NSURLContentModificationDateKey]);
        if (item.facts.kind == ItemFacts::Kind::regularFile)
            item.facts.allocatedBytes = allocatedBytes(values);
        if (isWanted(item.facts))
            item.fingerprint = {.contentModificationDate = item.facts.contentModificationDate,
                                .resourceIdentifier = descriptionOf(values[NSURLFileResourceIdentifierKey]),
                                .volumeIdentifier = descriptionOf(values[NSURLVolumeIdentifierKey])};
        return item;
    }
}

FolderAccess folderAccess(const std::filesystem::path& path) {
    const auto place = promptPath(path, FinalLink::isFollowed);
    struct stat facts = {};
    if (!place || stat(place->c_str(), &facts) != 0)
        return accessAfter(place ? errno : place.error());
    if (!S_ISDIR(facts.st_mode))
        return FolderAccess::none;
    return access(place->c_str(), R_OK) == 0 ? FolderAccess::readable : FolderAccess::unreadable;
}

FolderOpener folderOpener() {
    return [](const std::filesystem::path& path) {
        const auto place = promptPath(path, FinalLink::isFollowed);
        if (!place)
            return accessAfter(place.error());
        const UniqueFd folder(open(place->c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
        return folder ? FolderAccess::readable : accessAfter(errno);
    };
}

std::string displayName(const std::filesystem::path& path) {
    @autoreleasepool {
        const auto place = promptPath(path, FinalLink::isKept);
        NSString* name = place ? foundationText(place->native()) : nil;
        const auto shown = name ? textFromFoundation([NSFileManager.defaultManager displayNameAtPath:name]) : "";
        const auto named = path.has_filename() ? path : path.parent_path();
        return !shown.empty() ? shown : withReplacementCharacters(named.filename().native());
    }
}

} // namespace vantry
