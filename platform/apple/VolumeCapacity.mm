#include "platform/VolumeCapacity.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <limits>

namespace vantry {

namespace {

// A new URL for each request: a URL object caches its values.
NSURL* directoryUrl(const std::filesystem::path& path) {
    return [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:YES relativeToURL:nil];
}

std::optional<std::string> textIn(id value) {
    if (![value isKindOfClass:[NSString class]])
        return std::nullopt;
    return textFromFoundation(value);
}

std::optional<std::int64_t> amountIn(id value) {
    if (![value isKindOfClass:[NSNumber class]])
        return std::nullopt;
    constexpr auto largestAmount = std::numeric_limits<std::int64_t>::max();
    NSNumber* number = value;
    if ([number compare:[NSNumber numberWithLongLong:largestAmount]] == NSOrderedDescending)
        return largestAmount;
    return number.longLongValue;
}

} // namespace

Result<VolumeCapacity> readVolumeCapacity(const std::filesystem::path& path) {
    @autoreleasepool {
        NSArray<NSURLResourceKey>* keys = @[
            NSURLVolumeNameKey, NSURLVolumeTotalCapacityKey, NSURLVolumeAvailableCapacityKey,
            NSURLVolumeAvailableCapacityForImportantUsageKey
        ];
        NSError* error = nil;
        NSDictionary<NSURLResourceKey, id>* values = [directoryUrl(path) resourceValuesForKeys:keys error:&error];
        if (!values)
            return std::unexpected(errorFromFoundation(error));
        return VolumeCapacity{.name = textIn(values[NSURLVolumeNameKey]),
                              .totalBytes = amountIn(values[NSURLVolumeTotalCapacityKey]),
                              .availableBytes = amountIn(values[NSURLVolumeAvailableCapacityKey]),
                              .availableForImportantUsageBytes =
                                  amountIn(values[NSURLVolumeAvailableCapacityForImportantUsageKey])};
    }
}

Result<VolumeCapacity> readFileSystemAttributes(const std::filesystem::path& path) {
    @autoreleasepool {
        NSURL* url = directoryUrl(path);
        NSFileManager* files = [NSFileManager defaultManager];
        NSString* filePath = [files stringWithFileSystemRepresentation:path.c_str() length:path.native().size()];
        NSError* error = nil;
        NSDictionary<NSFileAttributeKey, id>* attributes = [files attributesOfFileSystemForPath:filePath error:&error];
        if (!attributes)
            return std::unexpected(errorFromFoundation(error));
        id name = nil;
        [url getResourceValue:&name forKey:NSURLVolumeNameKey error:nil];
        return VolumeCapacity{.name = textIn(name),
                              .totalBytes = amountIn(attributes[NSFileSystemSize]),
                              .availableBytes = amountIn(attributes[NSFileSystemFreeSize]),
                              .availableForImportantUsageBytes = std::nullopt};
    }
}

} // namespace vantry
