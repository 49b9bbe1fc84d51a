#include "platform/DesktopPicture.h"

#include "base/AtomicFile.h"
#include "platform/PropertyList.h"
#include "platform/apple/FoundationValues.h"

#include <AppKit/AppKit.h>
#include <dispatch/dispatch.h>
#include <string>
#include <system_error>

namespace vantry {

namespace {

namespace fs = std::filesystem;

constexpr const char* aerialProvider = "com.apple.wallpaper.choice.aerials";

// Nil unless `data` is a property list with a dictionary at the top.
NSDictionary<NSString*, id>* dictionaryIn(NSData* data) {
    id list = [NSPropertyListSerialization propertyListWithData:data
                                                        options:NSPropertyListImmutable
                                                         format:nullptr
                                                          error:nullptr];
    return [list isKindOfClass:[NSDictionary class]] ? list : nil;
}

// Nil unless `object` is a dictionary with that key.
id elementOf(id object, NSString* key) {
    return [object isKindOfClass:[NSDictionary class]]
               ? [static_cast<NSDictionary<NSString*, id>*>(object) objectForKey:key]
               : nil;
}

std::optional<std::string> aerialAssetIDIn(NSData* store) {
    id choices =
        elementOf(elementOf(elementOf(elementOf(dictionaryIn(store), @"AllSpacesAndDisplays"), @"Desktop"), @"Content"),
                  @"Choices");
    if (![choices isKindOfClass:[NSArray class]])
        return std::nullopt;
    id choice = static_cast<NSArray<id>*>(choices).firstObject;
    id provider = elementOf(choice, @"Provider");
    id configuration = elementOf(choice, @"Configuration");
    if (![provider isKindOfClass:[NSString class]] || textFromFoundation(provider) != aerialProvider ||
        ![configuration isKindOfClass:[NSData class]])
        return std::nullopt;
    id asset = elementOf(dictionaryIn(configuration), @"assetID");
    if (![asset isKindOfClass:[NSString class]])
        return std::nullopt;
    std::string name = textFromFoundation(asset);
    const bool isName = !name.empty() && name.find('/') == std::string::npos;
    return isName ? std::optional(std::move(name)) : std::nullopt;
}

fs::path wallpaperFolder() {
    return fs::path(textFromFoundation(NSHomeDirectory())) / "Library/Application Support/com.apple.wallpaper";
}

std::optional<std::string> currentAerialAssetID() {
    const auto bytes = readSmallFile(wallpaperFolder() / "Store/Index.plist", largestPropertyList);
    return bytes ? aerialAssetIDIn([NSData dataWithBytes:bytes->data() length:bytes->size()]) : std::nullopt;
}

} // namespace

std::optional<fs::path> movingWallpaper() {
    @autoreleasepool {
        const auto asset = currentAerialAssetID();
        if (!asset)
            return std::nullopt;
        const fs::path aerials = wallpaperFolder() / "aerials";
        for (const auto& file : {aerials / "thumbnails" / (*asset + ".png"), aerials / "videos" / (*asset + ".mov")}) {
            std::error_code ignored;
            if (fs::exists(file, ignored))
                return file;
        }
        return std::nullopt;
    }
}

// Screens may only be used on the main thread, which never waits for this one.
std::optional<fs::path> desktopPicture(const Screen& screen) {
    @autoreleasepool {
        __block std::string path;
        NSString* name = foundationText(screen.name);
        dispatch_sync(dispatch_get_main_queue(), ^{
            for (NSScreen* candidate in [NSScreen screens]) {
                NSURL* url = [[NSWorkspace sharedWorkspace] desktopImageURLForScreen:candidate];
                if (url.isFileURL && (path.empty() || [candidate.localizedName isEqualToString:name]))
                    path = textFromFoundation(url.path);
            }
        });
        return path.empty() ? std::nullopt : std::optional<fs::path>(path);
    }
}

fs::path defaultDesktopPicture() { return "/System/Library/CoreServices/DefaultDesktop.heic"; }

} // namespace vantry
