#include "platform/FileFingerprint.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <fcntl.h>
#include <sys/param.h>
#include <sys/stat.h>

namespace vantry {

namespace {

std::optional<SystemTime> dateIn(id value) {
    if (![value isKindOfClass:[NSDate class]])
        return std::nullopt;
    constexpr std::int64_t referenceDate = 978'307'200; // 2001, from which the dates count
    constexpr double faraway = 1e12;                    // seconds; far outside what SystemTime holds
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

bool isSameItem(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

FileFingerprint readFileFingerprint(const std::filesystem::path& path) {
    @autoreleasepool {
        const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
        if (item.empty())
            return {};
        // A new URL for each request: a URL object remembers the values that it once answered.
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:item.c_str() isDirectory:NO relativeToURL:nil];
        NSArray<NSURLResourceKey>* keys =
            @[ NSURLContentModificationDateKey, NSURLFileResourceIdentifierKey, NSURLVolumeIdentifierKey ];
        NSDictionary<NSURLResourceKey, id>* values = [url resourceValuesForKeys:keys error:nil];
        if (!values)
            return {};
        return {.contentModificationDate = dateIn(values[NSURLContentModificationDateKey]),
                .resourceIdentifier = descriptionOf(values[NSURLFileResourceIdentifierKey]),
                .volumeIdentifier = descriptionOf(values[NSURLVolumeIdentifierKey])};
    }
}

// Resource values are asked for by path only. What the path held before and after they were read has to be the item.
FileFingerprint readFileFingerprint(int fd) {
    std::array<char, MAXPATHLEN> path{};
    struct stat item = {};
    struct stat before = {};
    struct stat after = {};
    if (fstat(fd, &item) != 0 || fcntl(fd, F_GETPATH, path.data()) != 0 || lstat(path.data(), &before) != 0)
        return {};
    const FileFingerprint fingerprint = readFileFingerprint(std::filesystem::path(path.data()));
    if (lstat(path.data(), &after) != 0 || !isSameItem(item, before) || !isSameItem(item, after))
        return {};
    return fingerprint;
}

} // namespace vantry
