// Files, their resource values, the Trash, and what the system knows of applications.

#include "tests/apple/foundation/Files.h"

#include "tests/apple/runtime/Runtime.h"

#include <CoreServices/CoreServices.h>
#include <cerrno>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <utility>

using namespace vantry;
using vantry::apple::FileSystem;
namespace fs = std::filesystem;

FileSystem& FileSystem::get() {
    static FileSystem& one = *new FileSystem;
    return one;
}

void FileSystem::reset() { get() = {}; }

extern "C" {
NSErrorDomain const NSOSStatusErrorDomain = @"NSOSStatusErrorDomain";
}

namespace {

struct Facts {
    struct stat item;
    struct statvfs volume;
};

NSNumber* yesIf(bool holds) { return [NSNumber numberWithBool:holds]; }
NSNumber* amount(unsigned long long bytes) { return [NSNumber numberWithUnsignedLongLong:bytes]; }
NSString* textOf(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

using Read = id (*)(const Facts&);

id allocatedSize(const Facts& facts) { return amount(static_cast<unsigned long long>(facts.item.st_blocks) * 512); }
id totalSize(const Facts& facts) { return amount(facts.volume.f_blocks * facts.volume.f_frsize); }
id freeSize(const Facts& facts) { return amount(facts.volume.f_bavail * facts.volume.f_frsize); }

} // namespace

// "Common File System Resource Keys": a file is nothing of a link, a folder or a package. What identifies an item is an
// object that says so about itself.
#define KEYS(KEY)                                                                                                      \
    KEY(NSURLIsRegularFileKey, yesIf(S_ISREG(facts.item.st_mode)))                                                     \
    KEY(NSURLIsDirectoryKey, yesIf(S_ISDIR(facts.item.st_mode)))                                                       \
    KEY(NSURLIsSymbolicLinkKey, yesIf(S_ISLNK(facts.item.st_mode)))                                                    \
    KEY(NSURLIsPackageKey, yesIf(false))                                                                               \
    KEY(NSURLIsUbiquitousItemKey, yesIf(false))                                                                        \
    KEY(NSURLFileAllocatedSizeKey, allocatedSize(facts))                                                               \
    KEY(NSURLTotalFileAllocatedSizeKey, allocatedSize(facts))                                                          \
    KEY(NSURLContentModificationDateKey,                                                                               \
        [NSDate dateWithTimeIntervalSince1970:static_cast<double>(facts.item.st_mtim.tv_sec) +                         \
                                              static_cast<double>(facts.item.st_mtim.tv_nsec) / 1e9])                  \
    KEY(NSURLFileResourceIdentifierKey, textOf(std::to_string(facts.item.st_ino)))                                     \
    KEY(NSURLVolumeIdentifierKey, textOf(std::to_string(facts.item.st_dev)))                                           \
    KEY(NSURLVolumeNameKey, @"Macintosh HD")                                                                           \
    KEY(NSURLVolumeTotalCapacityKey, totalSize(facts))                                                                 \
    KEY(NSURLVolumeAvailableCapacityKey, freeSize(facts))                                                              \
    KEY(NSURLVolumeAvailableCapacityForImportantUsageKey, freeSize(facts))                                             \
    KEY(NSFileSystemSize, totalSize(facts))                                                                            \
    KEY(NSFileSystemFreeSize, freeSize(facts))

#define CONSTANT(name, value) extern "C" NSString* const name = @ #name;
KEYS(CONSTANT)

namespace {

const std::map<std::string, Read>& readers() {
#define READER(name, value) {#name, [](const Facts& facts) -> id { return (void)facts, value; }},
    static const std::map<std::string, Read> all{KEYS(READER)};
    return all;
}

NSError* cocoaError(NSInteger code) { return [NSError errorWithDomain:NSCocoaErrorDomain code:code userInfo:nil]; }

fs::path volumeOf(const fs::path& item, const Facts& facts) {
    return S_ISLNK(facts.item.st_mode) ? item.parent_path() : item;
}

// A name at the end is that of the item itself, a link not followed.
NSMutableDictionary* valuesAt(const std::string& path, NSArray* keys, NSError** error) {
    FileSystem& system = FileSystem::get();
    if (system.beforeReading)
        system.beforeReading(path);
    Facts facts{};
    std::string item = path;
    while (item.size() > 1 && item.ends_with('/'))
        item.pop_back();
    if (lstat(item.c_str(), &facts.item) != 0 || statvfs(volumeOf(item, facts).c_str(), &facts.volume) != 0) {
        if (error)
            *error = cocoaError(errno == EACCES ? NSFileReadNoPermissionError : NSFileReadNoSuchFileError);
        return nil;
    }
    NSMutableDictionary* values = [NSMutableDictionary dictionary];
    for (NSString* key in keys) {
        const auto changed = system.values.find(key.UTF8String);
        id value = changed != system.values.end() ? changed->second : readers().at(key.UTF8String)(facts);
        if (value)
            [values setObject:value forKey:key];
    }
    return values;
}

} // namespace

@implementation NSURL {
    std::string _text; ///< the path of a file URL
    BOOL _isFile;
}

+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDirectory
                                relativeToURL:(NSURL*)base {
    if (base)
        objc::die("a relative URL");
    NSURL* url = [[NSURL alloc] init];
    url->_text = path;
    url->_isFile = YES;
    return url;
}

+ (instancetype)URLWithString:(NSString*)text {
    NSURL* url = [[NSURL alloc] init];
    url->_text = text.UTF8String;
    return url;
}

ANSWERS(BOOL, isFileURL, _isFile)
ANSWERS(NSString*, path, _isFile ? textOf(_text) : nil)
ANSWERS(NSString*, absoluteString, _isFile ? nil : textOf(_text))
ANSWERS(const char*, fileSystemRepresentation, _text.c_str())

- (NSDictionary*)resourceValuesForKeys:(NSArray*)keys error:(NSError**)error {
    return valuesAt(_text, keys, error);
}

- (BOOL)getResourceValue:(id*)value forKey:(NSURLResourceKey)key error:(NSError**)error {
    NSDictionary* values = valuesAt(_text, @[ key ], error);
    *value = [values objectForKey:key];
    return values != nil;
}

@end

@implementation NSFileManager

SHARED(NSFileManager, defaultManager)

- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(BOOL*)isDirectory {
    struct stat status {};
    if (stat(path.UTF8String, &status) != 0)
        return NO;
    *isDirectory = S_ISDIR(status.st_mode);
    return YES;
}

// "If there is no file or directory at path, or if an error occurs, this method returns path as is."
- (NSString*)displayNameAtPath:(NSString*)path {
    struct stat status {};
    const fs::path item = path.UTF8String;
    return lstat(item.c_str(), &status) == 0 ? textOf(item.filename()) : path;
}

// Nil when the bytes are not text; a guess.
- (NSString*)stringWithFileSystemRepresentation:(const char*)path length:(NSUInteger)length {
    return [[NSString alloc] initWithBytes:path length:length encoding:NSUTF8StringEncoding];
}

- (NSDictionary*)attributesOfFileSystemForPath:(NSString*)path error:(NSError**)error {
    return valuesAt(path.UTF8String, @[ NSFileSystemSize, NSFileSystemFreeSize ], error);
}

- (NSURL*)URLForDirectory:(NSSearchPathDirectory)directory
                 inDomain:(NSSearchPathDomainMask)domain
        appropriateForURL:(NSURL*)url
                   create:(BOOL)shouldCreate
                    error:(NSError**)error {
    if (directory != NSTrashDirectory || domain != NSUserDomainMask || !url)
        objc::die("a folder that is not the Trash of an item");
    const fs::path& trash = FileSystem::get().trash;
    return trash.empty() ? nil
                         : [NSURL fileURLWithFileSystemRepresentation:trash.c_str() isDirectory:YES relativeToURL:nil];
}

// "The actual name of the item may be changed"; guess: a number is put behind it.
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)result error:(NSError**)error {
    const FileSystem& system = FileSystem::get();
    if (system.beforeTrashing)
        system.beforeTrashing();
    const fs::path item = url.fileSystemRepresentation;
    fs::path arrived = system.trash / item.filename();
    for (int number = 2; fs::exists(arrived); ++number)
        arrived = system.trash / (item.filename().native() + " " + std::to_string(number));
    const bool fails = system.trashError != 0;
    std::error_code failure;
    if (!fails || system.movesInSpiteOfError)
        fs::rename(item, arrived, failure);
    if (fails || failure) {
        *error = cocoaError(fails ? system.trashError : NSFileNoSuchFileError);
        return NO;
    }
    if (system.afterTrashing)
        system.afterTrashing(arrived);
    if (system.tellsWhatArrived)
        *result = [NSURL fileURLWithFileSystemRepresentation:arrived.c_str() isDirectory:NO relativeToURL:nil];
    return YES;
}

@end

@implementation NSFileCoordinator

- (instancetype)initWithFilePresenter:(id<NSFilePresenter>)presenter {
    return self;
}

// "The block is not executed if an error occurs"; the URL may be another one when the item was moved meanwhile.
- (void)coordinateWritingItemAtURL:(NSURL*)url
                           options:(NSFileCoordinatorWritingOptions)options
                             error:(NSError**)error
                        byAccessor:(void (^)(NSURL*))writer {
    if (options != NSFileCoordinatorWritingForMoving || objc::isMainThread())
        objc::die("a coordination that is not for moving, or on the main thread");
    const auto& coordinate = FileSystem::get().coordinate;
    const std::vector<fs::path> places =
        coordinate ? coordinate(url.fileSystemRepresentation) : std::vector{fs::path(url.fileSystemRepresentation)};
    for (const fs::path& place : places)
        writer([NSURL fileURLWithFileSystemRepresentation:place.c_str() isDirectory:NO relativeToURL:nil]);
    if (places.empty())
        *error = cocoaError(NSFileLockingError);
}

@end

// "The bundle that contains the current executable": also where there is none, its folder.
@implementation NSBundle

+ (NSBundle*)mainBundle {
    return [[NSBundle alloc] init];
}

ANSWERS(NSString*, bundleIdentifier, FileSystem::get().bundle.empty() ? nil : @"app.ombrel.Ombrel")

- (NSURL*)bundleURL {
    return [NSURL fileURLWithFileSystemRepresentation:FileSystem::get().bundle.c_str()
                                          isDirectory:YES
                                        relativeToURL:nil];
}

- (NSURL*)executableURL {
    const fs::path& path = FileSystem::get().executable;
    return path.empty() ? nil
                        : [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
}

@end

// "If no application could be found, the error is kLSApplicationNotFoundErr."
extern "C" CFArrayRef LSCopyApplicationURLsForBundleIdentifier(CFStringRef identifier, CFErrorRef* error) {
    const auto& applications = FileSystem::get().applications;
    const auto known = applications.find(((__bridge NSString*)identifier).UTF8String);
    const int answer = known == applications.end() ? kLSApplicationNotFoundErr : known->second;
    if (answer >= 0)
        return (__bridge_retained CFArrayRef)(answer > 0 ? @[ [NSURL URLWithString:@""] ] : @[]);
    *error = (__bridge_retained CFErrorRef)[NSError errorWithDomain:NSOSStatusErrorDomain code:answer userInfo:nil];
    return nullptr;
}
