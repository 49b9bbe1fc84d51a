// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <Foundation/NSString.h>

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
@interface NSDate : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs;
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)secs;
@property (readonly) NSTimeInterval timeIntervalSince1970, timeIntervalSinceNow, timeIntervalSinceReferenceDate;
@property (class, readonly, copy) NSDate *distantPast, *distantFuture;
- (NSTimeInterval)timeIntervalSinceDate:(NSDate *)anotherDate;
- (NSComparisonResult)compare:(NSDate *)other;
@end
@interface NSData : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
+ (instancetype)data;
+ (instancetype)dataWithBytes:(nullable const void *)bytes length:(NSUInteger)length;
+ (nullable instancetype)dataWithContentsOfURL:(NSURL *)url;
+ (nullable instancetype)dataWithContentsOfFile:(NSString *)path;
@property (readonly) NSUInteger length;
@property (readonly) const void *bytes NS_RETURNS_INNER_POINTER;
- (BOOL)isEqualToData:(NSData *)other;
- (BOOL)writeToURL:(NSURL *)url atomically:(BOOL)atomically;
@end
@interface NSUUID : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)UUID;
- (nullable instancetype)initWithUUIDString:(NSString *)string;
@property (readonly, copy) NSString *UUIDString;
@end
@interface NSLocale : NSObject <NSCopying, NSSecureCoding>
@property (class, readonly, copy) NSLocale *currentLocale, *autoupdatingCurrentLocale;
+ (instancetype)localeWithLocaleIdentifier:(NSString *)ident;
@property (readonly, copy) NSString *localeIdentifier;
@end

FOUNDATION_EXPORT NSErrorDomain const NSCocoaErrorDomain, NSPOSIXErrorDomain, NSOSStatusErrorDomain;
FOUNDATION_EXPORT NSErrorUserInfoKey const NSUnderlyingErrorKey, NSLocalizedDescriptionKey, NSFilePathErrorKey;
enum : NSInteger {
  NSFileNoSuchFileError = 4, NSFileLockingError = 255, NSFileReadUnknownError = 256, NSFileReadNoPermissionError = 257,
  NSFileReadNoSuchFileError = 260, NSFileWriteUnknownError = 512, NSFileWriteNoPermissionError = 513,
  NSFileWriteFileExistsError = 516, NSFileWriteOutOfSpaceError = 640, NSFileWriteVolumeReadOnlyError = 642,
  NSUserCancelledError = 3072, NSFeatureUnsupportedError = 3328
};
@interface NSError : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)errorWithDomain:(NSErrorDomain)domain code:(NSInteger)code userInfo:(nullable NSDictionary<NSErrorUserInfoKey, id> *)dict;
@property (readonly, copy) NSErrorDomain domain;
@property (readonly) NSInteger code;
@property (readonly, copy) NSDictionary<NSErrorUserInfoKey, id> *userInfo;
@property (readonly, copy) NSString *localizedDescription;
@property (nullable, readonly, copy) NSString *localizedFailureReason, *localizedRecoverySuggestion;
@property (readonly, copy) NSArray<NSError *> *underlyingErrors;
@end
@interface NSException : NSObject <NSCopying, NSSecureCoding>
@property (readonly, copy) NSExceptionName name;
@property (nullable, readonly, copy) NSString *reason;
@end

@interface NSURL : NSObject <NSCopying, NSSecureCoding>
+ (NSURL *)fileURLWithPath:(NSString *)path;
+ (NSURL *)fileURLWithPath:(NSString *)path isDirectory:(BOOL)isDir;
+ (NSURL *)fileURLWithFileSystemRepresentation:(const char *)path isDirectory:(BOOL)isDir relativeToURL:(nullable NSURL *)baseURL;
+ (nullable instancetype)URLWithString:(NSString *)URLString;
@property (nullable, readonly, copy) NSString *absoluteString, *scheme, *path, *lastPathComponent, *pathExtension;
@property (readonly) const char *fileSystemRepresentation NS_RETURNS_INNER_POINTER;
@property (readonly, getter=isFileURL) BOOL fileURL;
@property (nullable, readonly, copy) NSURL *URLByStandardizingPath, *URLByResolvingSymlinksInPath, *URLByDeletingLastPathComponent;
- (nullable NSURL *)URLByAppendingPathComponent:(NSString *)pathComponent;
- (nullable NSURL *)URLByAppendingPathComponent:(NSString *)pathComponent isDirectory:(BOOL)isDirectory;
- (BOOL)getFileSystemRepresentation:(char *)buffer maxLength:(NSUInteger)maxBufferLength;
- (BOOL)getResourceValue:(out id _Nullable *_Nonnull)value forKey:(NSURLResourceKey)key error:(out NSError **_Nullable)error;
- (nullable NSDictionary<NSURLResourceKey, id> *)resourceValuesForKeys:(NSArray<NSURLResourceKey> *)keys error:(NSError **)error;
- (void)removeCachedResourceValueForKey:(NSURLResourceKey)key;
- (void)removeAllCachedResourceValues;
- (BOOL)checkResourceIsReachableAndReturnError:(NSError **)error;
- (BOOL)startAccessingSecurityScopedResource;
- (void)stopAccessingSecurityScopedResource;
@end
FOUNDATION_EXPORT NSURLResourceKey const NSURLNameKey, NSURLLocalizedNameKey, NSURLIsRegularFileKey, NSURLIsDirectoryKey,
    NSURLIsSymbolicLinkKey, NSURLIsVolumeKey, NSURLIsPackageKey, NSURLIsApplicationKey, NSURLIsHiddenKey, NSURLIsUbiquitousItemKey,
    NSURLFileSizeKey, NSURLFileAllocatedSizeKey, NSURLTotalFileSizeKey, NSURLTotalFileAllocatedSizeKey,
    NSURLContentModificationDateKey, NSURLContentAccessDateKey, NSURLCreationDateKey, NSURLFileResourceIdentifierKey,
    NSURLFileIdentifierKey, NSURLFileResourceTypeKey, NSURLContentTypeKey, NSURLEffectiveIconKey, NSURLVolumeIdentifierKey,
    NSURLVolumeURLKey, NSURLVolumeNameKey, NSURLVolumeLocalizedNameKey, NSURLVolumeTotalCapacityKey,
    NSURLVolumeAvailableCapacityKey, NSURLVolumeAvailableCapacityForImportantUsageKey,
    NSURLVolumeAvailableCapacityForOpportunisticUsageKey, NSURLVolumeIsRootFileSystemKey, NSURLVolumeIsInternalKey,
    NSURLVolumeIsRemovableKey, NSURLVolumeIsEjectableKey, NSURLVolumeIsLocalKey, NSURLVolumeIsBrowsableKey,
    NSURLVolumeIsReadOnlyKey, NSURLVolumeUUIDStringKey, NSURLUbiquitousItemDownloadingStatusKey;

typedef NS_ENUM(NSUInteger, NSSearchPathDirectory) {
  NSApplicationDirectory = 1, NSLibraryDirectory = 5, NSUserDirectory = 7, NSDocumentDirectory = 9, NSDesktopDirectory = 12,
  NSCachesDirectory = 13, NSApplicationSupportDirectory = 14, NSDownloadsDirectory = 15, NSMoviesDirectory = 17,
  NSMusicDirectory = 18, NSPicturesDirectory = 19, NSItemReplacementDirectory = 99, NSTrashDirectory = 102
};
typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask) {
  NSUserDomainMask = 1, NSLocalDomainMask = 2, NSNetworkDomainMask = 4, NSSystemDomainMask = 8, NSAllDomainsMask = 0x0ffff
};
typedef NS_OPTIONS(NSUInteger, NSVolumeEnumerationOptions) {
  NSVolumeEnumerationSkipHiddenVolumes = 1UL << 1, NSVolumeEnumerationProduceFileReferenceURLs = 1UL << 2
};
typedef NS_OPTIONS(NSUInteger, NSDirectoryEnumerationOptions) {
  NSDirectoryEnumerationSkipsSubdirectoryDescendants = 1UL << 0, NSDirectoryEnumerationSkipsPackageDescendants = 1UL << 1,
  NSDirectoryEnumerationSkipsHiddenFiles = 1UL << 2
};
FOUNDATION_EXPORT NSFileAttributeKey const NSFileType, NSFileSize, NSFileModificationDate, NSFileCreationDate, NSFileReferenceCount,
    NSFileDeviceIdentifier, NSFileOwnerAccountName, NSFileGroupOwnerAccountName, NSFilePosixPermissions, NSFileSystemNumber,
    NSFileSystemFileNumber, NSFileExtensionHidden, NSFileImmutable, NSFileAppendOnly, NSFileOwnerAccountID, NSFileGroupOwnerAccountID,
    NSFileBusy, NSFileSystemSize, NSFileSystemFreeSize, NSFileSystemNodes, NSFileSystemFreeNodes;
FOUNDATION_EXPORT NSFileAttributeType const NSFileTypeDirectory, NSFileTypeRegular, NSFileTypeSymbolicLink, NSFileTypeSocket,
    NSFileTypeCharacterSpecial, NSFileTypeBlockSpecial, NSFileTypeUnknown;
@interface NSDirectoryEnumerator<ObjectType> : NSEnumerator<ObjectType>
- (void)skipDescendants;
@end
@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager *defaultManager;
- (NSString *)displayNameAtPath:(NSString *)path;
- (BOOL)trashItemAtURL:(NSURL *)url resultingItemURL:(NSURL *_Nullable *_Nullable)outResultingURL error:(NSError **)error;
- (BOOL)fileExistsAtPath:(NSString *)path;
- (BOOL)fileExistsAtPath:(NSString *)path isDirectory:(nullable BOOL *)isDirectory;
- (BOOL)isReadableFileAtPath:(NSString *)path;
- (BOOL)isWritableFileAtPath:(NSString *)path;
- (BOOL)isDeletableFileAtPath:(NSString *)path;
- (nullable NSDictionary<NSFileAttributeKey, id> *)attributesOfItemAtPath:(NSString *)path error:(NSError **)error;
- (nullable NSDictionary<NSFileAttributeKey, id> *)attributesOfFileSystemForPath:(NSString *)path error:(NSError **)error;
- (BOOL)setAttributes:(NSDictionary<NSFileAttributeKey, id> *)attributes ofItemAtPath:(NSString *)path error:(NSError **)error;
@property (readonly, copy) NSURL *homeDirectoryForCurrentUser, *temporaryDirectory;
- (NSArray<NSURL *> *)URLsForDirectory:(NSSearchPathDirectory)directory inDomains:(NSSearchPathDomainMask)domainMask;
- (nullable NSURL *)URLForDirectory:(NSSearchPathDirectory)directory inDomain:(NSSearchPathDomainMask)domain
                  appropriateForURL:(nullable NSURL *)url create:(BOOL)shouldCreate error:(NSError **)error;
- (nullable NSArray<NSURL *> *)mountedVolumeURLsIncludingResourceValuesForKeys:(nullable NSArray<NSURLResourceKey> *)propertyKeys
                                                                      options:(NSVolumeEnumerationOptions)options;
- (nullable NSArray<NSURL *> *)contentsOfDirectoryAtURL:(NSURL *)url includingPropertiesForKeys:(nullable NSArray<NSURLResourceKey> *)keys
                                               options:(NSDirectoryEnumerationOptions)mask error:(NSError **)error;
- (nullable NSDirectoryEnumerator<NSURL *> *)enumeratorAtURL:(NSURL *)url
                                 includingPropertiesForKeys:(nullable NSArray<NSURLResourceKey> *)keys
                                                    options:(NSDirectoryEnumerationOptions)mask
                                               errorHandler:(nullable BOOL (^)(NSURL *url, NSError *error))handler;
- (BOOL)createDirectoryAtURL:(NSURL *)url withIntermediateDirectories:(BOOL)createIntermediates
                  attributes:(nullable NSDictionary<NSFileAttributeKey, id> *)attributes error:(NSError **)error;
- (BOOL)createDirectoryAtPath:(NSString *)path withIntermediateDirectories:(BOOL)createIntermediates
                   attributes:(nullable NSDictionary<NSFileAttributeKey, id> *)attributes error:(NSError **)error;
- (BOOL)moveItemAtURL:(NSURL *)srcURL toURL:(NSURL *)dstURL error:(NSError **)error;
- (BOOL)removeItemAtURL:(NSURL *)URL error:(NSError **)error;
- (const char *)fileSystemRepresentationWithPath:(NSString *)path NS_RETURNS_INNER_POINTER;
- (NSString *)stringWithFileSystemRepresentation:(const char *)str length:(NSUInteger)len;
@end

typedef NS_OPTIONS(NSUInteger, NSFileCoordinatorReadingOptions) {
  NSFileCoordinatorReadingWithoutChanges = 1 << 0, NSFileCoordinatorReadingResolvesSymbolicLink = 1 << 1,
  NSFileCoordinatorReadingImmediatelyAvailableMetadataOnly = 1 << 2, NSFileCoordinatorReadingForUploading = 1 << 3
};
typedef NS_OPTIONS(NSUInteger, NSFileCoordinatorWritingOptions) {
  NSFileCoordinatorWritingForDeleting = 1 << 0, NSFileCoordinatorWritingForMoving = 1 << 1, NSFileCoordinatorWritingForMerging = 1 << 2,
  NSFileCoordinatorWritingForReplacing = 1 << 3, NSFileCoordinatorWritingContentIndependentMetadataOnly = 1 << 4
};
@protocol NSFilePresenter <NSObject>
@property (nullable, readonly, copy) NSURL *presentedItemURL;
@property (readonly, retain) NSOperationQueue *presentedItemOperationQueue;
@end
@interface NSFileCoordinator : NSObject
- (instancetype)initWithFilePresenter:(nullable id<NSFilePresenter>)filePresenterOrNil NS_DESIGNATED_INITIALIZER;
@property (copy) NSString *purposeIdentifier;
- (void)coordinateReadingItemAtURL:(NSURL *)url options:(NSFileCoordinatorReadingOptions)options error:(NSError **)outError
                        byAccessor:(void (NS_NOESCAPE ^)(NSURL *newURL))reader;
- (void)coordinateWritingItemAtURL:(NSURL *)url options:(NSFileCoordinatorWritingOptions)options error:(NSError **)outError
                        byAccessor:(void (NS_NOESCAPE ^)(NSURL *newURL))writer;
- (void)itemAtURL:(NSURL *)oldURL didMoveToURL:(NSURL *)newURL;
- (void)cancel;
@end

@interface NSBundle : NSObject
@property (class, readonly, strong) NSBundle *mainBundle;
+ (nullable instancetype)bundleWithURL:(NSURL *)url;
+ (nullable instancetype)bundleWithPath:(NSString *)path;
+ (nullable NSBundle *)bundleWithIdentifier:(NSString *)identifier;
@property (readonly, copy) NSURL *bundleURL;
@property (readonly, copy) NSString *bundlePath;
@property (nullable, readonly, copy) NSString *bundleIdentifier, *resourcePath, *executablePath;
@property (nullable, readonly, copy) NSURL *executableURL, *resourceURL;
@property (nullable, readonly, copy) NSDictionary<NSString *, id> *infoDictionary;
- (nullable id)objectForInfoDictionaryKey:(NSString *)key;
- (nullable NSURL *)URLForResource:(nullable NSString *)name withExtension:(nullable NSString *)ext;
- (NSString *)localizedStringForKey:(NSString *)key value:(nullable NSString *)value table:(nullable NSString *)tableName;
@end

typedef struct { NSInteger majorVersion, minorVersion, patchVersion; } NSOperatingSystemVersion;
typedef NS_OPTIONS(uint64_t, NSActivityOptions) {
  NSActivityIdleSystemSleepDisabled = 1ULL << 20, NSActivitySuddenTerminationDisabled = 1ULL << 14,
  NSActivityAutomaticTerminationDisabled = 1ULL << 15, NSActivityUserInitiated = 0x00FFFFFFULL | NSActivityIdleSystemSleepDisabled,
  NSActivityUserInitiatedAllowingIdleSystemSleep = NSActivityUserInitiated & ~NSActivityIdleSystemSleepDisabled,
  NSActivityBackground = 0x000000FFULL
};
@interface NSProcessInfo : NSObject
@property (class, readonly, strong) NSProcessInfo *processInfo;
@property (readonly, copy) NSDictionary<NSString *, NSString *> *environment;
@property (readonly, copy) NSArray<NSString *> *arguments;
@property (copy) NSString *processName;
@property (readonly) int processIdentifier;
@property (readonly, copy) NSString *operatingSystemVersionString;
@property (readonly) NSOperatingSystemVersion operatingSystemVersion;
- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version;
@property (readonly) NSUInteger activeProcessorCount;
@property (readonly) unsigned long long physicalMemory;
@property (readonly) NSTimeInterval systemUptime;
@property (readonly, getter=isLowPowerModeEnabled) BOOL lowPowerModeEnabled;
@property BOOL automaticTerminationSupportEnabled;
- (void)disableSuddenTermination;
- (void)enableSuddenTermination;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString *)reason;
- (void)endActivity:(id<NSObject>)activity;
@end
@interface NSUserDefaults : NSObject
@property (class, readonly, strong) NSUserDefaults *standardUserDefaults;
- (nullable instancetype)initWithSuiteName:(nullable NSString *)suitename NS_DESIGNATED_INITIALIZER;
- (nullable id)objectForKey:(NSString *)defaultName;
- (void)setObject:(nullable id)value forKey:(NSString *)defaultName;
- (void)removeObjectForKey:(NSString *)defaultName;
- (nullable NSString *)stringForKey:(NSString *)defaultName;
- (NSInteger)integerForKey:(NSString *)defaultName;
- (double)doubleForKey:(NSString *)defaultName;
- (BOOL)boolForKey:(NSString *)defaultName;
- (void)setInteger:(NSInteger)value forKey:(NSString *)defaultName;
- (void)setDouble:(double)value forKey:(NSString *)defaultName;
- (void)setBool:(BOOL)value forKey:(NSString *)defaultName;
- (void)registerDefaults:(NSDictionary<NSString *, id> *)registrationDictionary;
- (BOOL)synchronize;
@end

typedef NS_ENUM(NSInteger, NSFormattingContext) {
  NSFormattingContextUnknown = 0, NSFormattingContextDynamic = 1, NSFormattingContextStandalone = 2,
  NSFormattingContextListItem = 3, NSFormattingContextBeginningOfSentence = 4, NSFormattingContextMiddleOfSentence = 5
};
typedef NS_OPTIONS(NSUInteger, NSByteCountFormatterUnits) {
  NSByteCountFormatterUseDefault = 0, NSByteCountFormatterUseBytes = 1UL << 0, NSByteCountFormatterUseKB = 1UL << 1,
  NSByteCountFormatterUseMB = 1UL << 2, NSByteCountFormatterUseGB = 1UL << 3, NSByteCountFormatterUseTB = 1UL << 4,
  NSByteCountFormatterUsePB = 1UL << 5, NSByteCountFormatterUseEB = 1UL << 6, NSByteCountFormatterUseZB = 1UL << 7,
  NSByteCountFormatterUseYBOrHigher = 0x0FFUL << 8, NSByteCountFormatterUseAll = 0x0FFFFUL
};
typedef NS_ENUM(NSInteger, NSByteCountFormatterCountStyle) {
  NSByteCountFormatterCountStyleFile = 0, NSByteCountFormatterCountStyleMemory = 1,
  NSByteCountFormatterCountStyleDecimal = 2, NSByteCountFormatterCountStyleBinary = 3
};
@interface NSFormatter : NSObject <NSCopying, NSCoding>
- (nullable NSString *)stringForObjectValue:(nullable id)obj;
@end
@interface NSByteCountFormatter : NSFormatter
+ (NSString *)stringFromByteCount:(long long)byteCount countStyle:(NSByteCountFormatterCountStyle)countStyle;
- (NSString *)stringFromByteCount:(long long)byteCount;
@property NSByteCountFormatterUnits allowedUnits;
@property NSByteCountFormatterCountStyle countStyle;
@property BOOL allowsNonnumericFormatting, includesUnit, includesCount, includesActualByteCount;
@property (getter=isAdaptive) BOOL adaptive;
@property BOOL zeroPadsFractionDigits;
@property NSFormattingContext formattingContext;
@end
typedef NS_ENUM(NSUInteger, NSNumberFormatterStyle) {
  NSNumberFormatterNoStyle = 0, NSNumberFormatterDecimalStyle = 1, NSNumberFormatterCurrencyStyle = 2, NSNumberFormatterPercentStyle = 3
};
@interface NSNumberFormatter : NSFormatter
- (nullable NSString *)stringFromNumber:(NSNumber *)number;
- (nullable NSNumber *)numberFromString:(NSString *)string;
+ (NSString *)localizedStringFromNumber:(NSNumber *)num numberStyle:(NSNumberFormatterStyle)nstyle;
@property NSNumberFormatterStyle numberStyle;
@property (null_resettable, copy) NSLocale *locale;
@property BOOL usesGroupingSeparator;
@property NSUInteger minimumIntegerDigits, maximumIntegerDigits, minimumFractionDigits, maximumFractionDigits;
@property (null_resettable, copy) NSString *decimalSeparator, *groupingSeparator;
@end
typedef NS_ENUM(NSUInteger, NSDateFormatterStyle) {
  NSDateFormatterNoStyle = 0, NSDateFormatterShortStyle = 1, NSDateFormatterMediumStyle = 2, NSDateFormatterLongStyle = 3, NSDateFormatterFullStyle = 4
};
@interface NSDateFormatter : NSFormatter
- (NSString *)stringFromDate:(NSDate *)date;
- (nullable NSDate *)dateFromString:(NSString *)string;
+ (NSString *)localizedStringFromDate:(NSDate *)date dateStyle:(NSDateFormatterStyle)dstyle timeStyle:(NSDateFormatterStyle)tstyle;
- (void)setLocalizedDateFormatFromTemplate:(NSString *)dateFormatTemplate;
@property (null_resettable, copy) NSString *dateFormat;
@property NSDateFormatterStyle dateStyle, timeStyle;
@property (null_resettable, copy) NSLocale *locale;
@property BOOL doesRelativeDateFormatting;
@end

@interface NSNotification : NSObject <NSCopying, NSCoding>
@property (readonly, copy) NSNotificationName name;
@property (nullable, readonly, retain) id object;
@property (nullable, readonly, copy) NSDictionary *userInfo;
@end
@interface NSNotificationCenter : NSObject
@property (class, readonly, strong) NSNotificationCenter *defaultCenter;
- (void)addObserver:(id)observer selector:(SEL)aSelector name:(nullable NSNotificationName)aName object:(nullable id)anObject;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name object:(nullable id)obj queue:(nullable NSOperationQueue *)queue
                        usingBlock:(void (^)(NSNotification *notification))block;
- (void)postNotificationName:(NSNotificationName)aName object:(nullable id)anObject;
- (void)removeObserver:(id)observer;
- (void)removeObserver:(id)observer name:(nullable NSNotificationName)aName object:(nullable id)anObject;
@end
@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter *)defaultCenter;
@end
FOUNDATION_EXPORT NSNotificationName const NSUserDefaultsDidChangeNotification, NSCurrentLocaleDidChangeNotification;
@interface NSOperationQueue : NSObject
@property (class, readonly, strong) NSOperationQueue *mainQueue;
- (void)addOperationWithBlock:(void (^)(void))block;
@property NSInteger maxConcurrentOperationCount;
@property NSQualityOfService qualityOfService;
@end

typedef NS_OPTIONS(NSUInteger, NSPropertyListMutabilityOptions) {
  NSPropertyListImmutable = 0, NSPropertyListMutableContainers = 1, NSPropertyListMutableContainersAndLeaves = 2
};
typedef NSPropertyListMutabilityOptions NSPropertyListReadOptions;
typedef NSUInteger NSPropertyListWriteOptions;
typedef NS_ENUM(NSUInteger, NSPropertyListFormat) {
  NSPropertyListOpenStepFormat = 1, NSPropertyListXMLFormat_v1_0 = 100, NSPropertyListBinaryFormat_v1_0 = 200
};
@interface NSPropertyListSerialization : NSObject
+ (nullable NSData *)dataWithPropertyList:(id)plist format:(NSPropertyListFormat)format options:(NSPropertyListWriteOptions)opt
                                    error:(out NSError **_Nullable)error;
+ (nullable id)propertyListWithData:(NSData *)data options:(NSPropertyListReadOptions)opt
                             format:(nullable NSPropertyListFormat *)format error:(out NSError **_Nullable)error;
@end
@interface NSThread : NSObject
@property (class, readonly) BOOL isMainThread;
@property (class, readonly, strong) NSThread *mainThread, *currentThread;
+ (void)sleepForTimeInterval:(NSTimeInterval)ti;
@end
FOUNDATION_EXPORT NSRunLoopMode const NSDefaultRunLoopMode, NSRunLoopCommonModes;
@interface NSTimer : NSObject
+ (NSTimer *)timerWithTimeInterval:(NSTimeInterval)interval repeats:(BOOL)repeats block:(void (^)(NSTimer *timer))block;
+ (NSTimer *)scheduledTimerWithTimeInterval:(NSTimeInterval)interval repeats:(BOOL)repeats block:(void (^)(NSTimer *timer))block;
+ (NSTimer *)scheduledTimerWithTimeInterval:(NSTimeInterval)ti target:(id)aTarget selector:(SEL)aSelector
                                   userInfo:(nullable id)userInfo repeats:(BOOL)yesOrNo;
@property NSTimeInterval tolerance;
@property (readonly, getter=isValid) BOOL valid;
- (void)fire;
- (void)invalidate;
@end
@interface NSRunLoop : NSObject
@property (class, readonly, strong) NSRunLoop *currentRunLoop, *mainRunLoop;
- (void)addTimer:(NSTimer *)timer forMode:(NSRunLoopMode)mode;
- (void)run;
- (void)runUntilDate:(NSDate *)limitDate;
- (BOOL)runMode:(NSRunLoopMode)mode beforeDate:(NSDate *)limitDate;
- (void)performBlock:(void (^)(void))block;
@end
@interface NSObject (DelayedAndThreadPerforming)
- (void)performSelector:(SEL)aSelector withObject:(nullable id)anArgument afterDelay:(NSTimeInterval)delay;
+ (void)cancelPreviousPerformRequestsWithTarget:(id)aTarget;
- (void)performSelectorOnMainThread:(SEL)aSelector withObject:(nullable id)arg waitUntilDone:(BOOL)wait;
- (nullable id)valueForKey:(NSString *)key;
@end
NS_ASSUME_NONNULL_END
SDK_IN_13_END
