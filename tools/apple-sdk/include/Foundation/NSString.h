// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>
#include <dispatch/dispatch.h>
#include <limits.h>
#include <objc/NSObject.h>
#include <stdarg.h>
#include <SdkAvailability.h>

#ifdef __cplusplus
#define FOUNDATION_EXPORT extern "C"
#define NS_OPTIONS(type, name) type name; enum : type
#else
#define FOUNDATION_EXPORT extern
#define NS_OPTIONS(type, name) enum name : type name; enum name : type
#endif
#define FOUNDATION_EXTERN FOUNDATION_EXPORT
#define NS_ENUM(type, name) enum name : type name; enum name : type
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_VALID_UNTIL_END_OF_SCOPE __attribute__((objc_precise_lifetime))
#define NS_NOESCAPE __attribute__((noescape))
#define NS_RETURNS_RETAINED __attribute__((ns_returns_retained))
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))
#define NS_REQUIRES_SUPER __attribute__((objc_requires_super))
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_FORMAT_FUNCTION(f, a) __attribute__((format(__NSString__, f, a)))
#define NS_REQUIRES_NIL_TERMINATION __attribute__((sentinel(0, 1)))

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
@class NSArray<ObjectType>, NSBundle, NSCoder, NSData, NSDate, NSDictionary<KeyType, ObjectType>, NSEnumerator<ObjectType>,
    NSError, NSFormatter, NSLocale, NSMethodSignature, NSNumber, NSOperationQueue, NSSet<ObjectType>, NSString, NSTimeZone, NSURL, NSUUID;
typedef double NSTimeInterval;
typedef unsigned short unichar;
typedef NSUInteger NSStringEncoding;
typedef NSString *NSErrorDomain, *NSErrorUserInfoKey, *NSExceptionName, *NSURLResourceKey, *NSFileAttributeKey, *NSFileAttributeType,
    *NSNotificationName, *NSRunLoopMode, *NSAttributedStringKey;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef NSRect *NSRectPointer;
typedef struct _NSZone NSZone;
typedef struct _NSRange { NSUInteger location, length; } NSRange;
typedef struct NSEdgeInsets { CGFloat top, left, bottom, right; } NSEdgeInsets;
typedef NS_ENUM(NSInteger, NSComparisonResult) { NSOrderedAscending = -1L, NSOrderedSame, NSOrderedDescending };
typedef NS_ENUM(NSInteger, NSQualityOfService) {
  NSQualityOfServiceUserInteractive = 0x21, NSQualityOfServiceUserInitiated = 0x19, NSQualityOfServiceUtility = 0x11,
  NSQualityOfServiceBackground = 0x09, NSQualityOfServiceDefault = -1
};
typedef NS_ENUM(NSUInteger, NSRectEdge) {
  NSRectEdgeMinX = 0, NSRectEdgeMinY = 1, NSRectEdgeMaxX = 2, NSRectEdgeMaxY = 3,
  NSMinXEdge = NSRectEdgeMinX, NSMinYEdge = NSRectEdgeMinY, NSMaxXEdge = NSRectEdgeMaxX, NSMaxYEdge = NSRectEdgeMaxY
};
static const NSInteger NSNotFound = NSIntegerMax;
FOUNDATION_EXPORT const NSPoint NSZeroPoint;
FOUNDATION_EXPORT const NSSize NSZeroSize;
FOUNDATION_EXPORT const NSRect NSZeroRect;
static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { return CGPointMake(x, y); }
static inline NSSize NSMakeSize(CGFloat w, CGFloat h) { return CGSizeMake(w, h); }
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h) { return CGRectMake(x, y, w, h); }
static inline NSEdgeInsets NSEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom, CGFloat right) {
  NSEdgeInsets e = {top, left, bottom, right}; return e;
}
static inline NSRange NSMakeRange(NSUInteger loc, NSUInteger len) { NSRange r = {loc, len}; return r; }
static inline CGFloat NSMinX(NSRect r) { return r.origin.x; }
static inline CGFloat NSMinY(NSRect r) { return r.origin.y; }
static inline CGFloat NSMaxX(NSRect r) { return r.origin.x + r.size.width; }
static inline CGFloat NSMaxY(NSRect r) { return r.origin.y + r.size.height; }
static inline CGFloat NSMidX(NSRect r) { return r.origin.x + r.size.width * 0.5; }
static inline CGFloat NSMidY(NSRect r) { return r.origin.y + r.size.height * 0.5; }
static inline CGFloat NSWidth(NSRect r) { return r.size.width; }
static inline CGFloat NSHeight(NSRect r) { return r.size.height; }
FOUNDATION_EXPORT BOOL NSEqualRects(NSRect aRect, NSRect bRect);
FOUNDATION_EXPORT BOOL NSIsEmptyRect(NSRect aRect);
FOUNDATION_EXPORT BOOL NSPointInRect(NSPoint aPoint, NSRect aRect);
FOUNDATION_EXPORT BOOL NSIntersectsRect(NSRect aRect, NSRect bRect);
FOUNDATION_EXPORT NSRect NSInsetRect(NSRect aRect, CGFloat dX, CGFloat dY);
FOUNDATION_EXPORT NSRect NSOffsetRect(NSRect aRect, CGFloat dX, CGFloat dY);
FOUNDATION_EXPORT NSRect NSIntersectionRect(NSRect aRect, NSRect bRect);
FOUNDATION_EXPORT NSString *NSStringFromClass(Class aClass);
FOUNDATION_EXPORT NSString *NSStringFromSelector(SEL aSelector);
FOUNDATION_EXPORT NSString *NSStringFromRect(NSRect aRect);
FOUNDATION_EXPORT Class _Nullable NSClassFromString(NSString *aClassName);
FOUNDATION_EXPORT SEL NSSelectorFromString(NSString *aSelectorName);
FOUNDATION_EXPORT void NSLog(NSString *format, ...) NS_FORMAT_FUNCTION(1, 2);
FOUNDATION_EXPORT NSString *NSHomeDirectory(void);
FOUNDATION_EXPORT NSString *NSTemporaryDirectory(void);
FOUNDATION_EXPORT NSString *NSUserName(void);

@protocol NSCopying
- (id)copyWithZone:(nullable NSZone *)zone;
@end
@protocol NSMutableCopying
- (id)mutableCopyWithZone:(nullable NSZone *)zone;
@end
@protocol NSCoding
- (void)encodeWithCoder:(NSCoder *)coder;
- (nullable instancetype)initWithCoder:(NSCoder *)coder;
@end
@protocol NSSecureCoding <NSCoding>
@property (class, readonly) BOOL supportsSecureCoding;
@end
typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable *_Nullable itemsPtr;
  unsigned long *_Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer count:(NSUInteger)len;
@end
static inline CFTypeRef _Nullable CFBridgingRetain(id _Nullable X) { return (__bridge_retained CFTypeRef)X; }
static inline id _Nullable CFBridgingRelease(CFTypeRef CF_CONSUMED _Nullable X) { return (__bridge_transfer id)X; }

@interface NSNull : NSObject <NSCopying, NSSecureCoding>
+ (NSNull *)null;
@end
@interface NSValue : NSObject <NSCopying, NSSecureCoding>
+ (NSValue *)valueWithBytes:(const void *)value objCType:(const char *)type;
+ (NSValue *)valueWithRect:(NSRect)rect;
+ (NSValue *)valueWithSize:(NSSize)size;
+ (NSValue *)valueWithPoint:(NSPoint)point;
@property (readonly) NSRect rectValue;
@property (readonly) NSSize sizeValue;
@property (readonly) NSPoint pointValue;
@end
@interface NSNumber : NSValue
+ (NSNumber *)numberWithChar:(char)value;
+ (NSNumber *)numberWithUnsignedChar:(unsigned char)value;
+ (NSNumber *)numberWithShort:(short)value;
+ (NSNumber *)numberWithUnsignedShort:(unsigned short)value;
+ (NSNumber *)numberWithInt:(int)value;
+ (NSNumber *)numberWithUnsignedInt:(unsigned int)value;
+ (NSNumber *)numberWithLong:(long)value;
+ (NSNumber *)numberWithUnsignedLong:(unsigned long)value;
+ (NSNumber *)numberWithLongLong:(long long)value;
+ (NSNumber *)numberWithUnsignedLongLong:(unsigned long long)value;
+ (NSNumber *)numberWithFloat:(float)value;
+ (NSNumber *)numberWithDouble:(double)value;
+ (NSNumber *)numberWithBool:(BOOL)value;
+ (NSNumber *)numberWithInteger:(NSInteger)value;
+ (NSNumber *)numberWithUnsignedInteger:(NSUInteger)value;
@property (readonly) int intValue;
@property (readonly) unsigned int unsignedIntValue;
@property (readonly) long longValue;
@property (readonly) unsigned long unsignedLongValue;
@property (readonly) long long longLongValue;
@property (readonly) unsigned long long unsignedLongLongValue;
@property (readonly) float floatValue;
@property (readonly) double doubleValue;
@property (readonly) BOOL boolValue;
@property (readonly) NSInteger integerValue;
@property (readonly) NSUInteger unsignedIntegerValue;
@property (readonly, copy) NSString *stringValue;
- (NSComparisonResult)compare:(NSNumber *)otherNumber;
- (BOOL)isEqualToNumber:(NSNumber *)number;
@end

typedef NS_ENUM(NSStringEncoding, NSStringEncodingValues) { NSASCIIStringEncoding = 1, NSUTF8StringEncoding = 4, NSUTF16StringEncoding = 10 };
typedef NS_OPTIONS(NSUInteger, NSStringCompareOptions) {
  NSCaseInsensitiveSearch = 1, NSLiteralSearch = 2, NSBackwardsSearch = 4, NSAnchoredSearch = 8, NSNumericSearch = 64
};
@interface NSString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
+ (instancetype)string;
+ (instancetype)stringWithString:(NSString *)string;
+ (nullable instancetype)stringWithUTF8String:(const char *)nullTerminatedCString;
+ (instancetype)stringWithFormat:(NSString *)format, ... NS_FORMAT_FUNCTION(1, 2);
+ (instancetype)localizedStringWithFormat:(NSString *)format, ... NS_FORMAT_FUNCTION(1, 2);
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithUTF8String:(const char *)nullTerminatedCString;
- (nullable instancetype)initWithBytes:(const void *)bytes length:(NSUInteger)len encoding:(NSStringEncoding)encoding;
- (nullable instancetype)initWithData:(NSData *)data encoding:(NSStringEncoding)encoding;
@property (readonly) NSUInteger length;
- (unichar)characterAtIndex:(NSUInteger)index;
@property (nullable, readonly) const char *UTF8String NS_RETURNS_INNER_POINTER;
@property (readonly) const char *fileSystemRepresentation NS_RETURNS_INNER_POINTER;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)enc;
- (nullable NSData *)dataUsingEncoding:(NSStringEncoding)encoding;
- (NSString *)stringByAppendingString:(NSString *)aString;
- (NSString *)stringByAppendingFormat:(NSString *)format, ... NS_FORMAT_FUNCTION(1, 2);
- (NSString *)stringByAppendingPathComponent:(NSString *)str;
- (nullable NSString *)stringByAppendingPathExtension:(NSString *)str;
@property (readonly, copy) NSString *stringByDeletingLastPathComponent, *stringByDeletingPathExtension,
    *stringByStandardizingPath, *stringByExpandingTildeInPath, *lastPathComponent, *pathExtension, *lowercaseString,
    *uppercaseString, *localizedLowercaseString;
@property (readonly, copy) NSString *precomposedStringWithCanonicalMapping, *decomposedStringWithCanonicalMapping;
- (NSString *)substringFromIndex:(NSUInteger)from;
- (NSString *)substringToIndex:(NSUInteger)to;
- (NSRange)rangeOfString:(NSString *)searchString;
- (NSString *)stringByReplacingOccurrencesOfString:(NSString *)target withString:(NSString *)replacement;
- (NSArray<NSString *> *)componentsSeparatedByString:(NSString *)separator;
- (BOOL)isEqualToString:(NSString *)aString;
- (BOOL)hasPrefix:(NSString *)str;
- (BOOL)hasSuffix:(NSString *)str;
- (BOOL)containsString:(NSString *)str;
- (NSComparisonResult)compare:(NSString *)string;
- (NSComparisonResult)compare:(NSString *)string options:(NSStringCompareOptions)mask;
- (NSComparisonResult)caseInsensitiveCompare:(NSString *)string;
- (NSComparisonResult)localizedStandardCompare:(NSString *)string;
@property (readonly) NSInteger integerValue;
@property (readonly) long long longLongValue;
@property (readonly) double doubleValue;
@end
@interface NSMutableString : NSString
- (void)appendString:(NSString *)aString;
- (void)appendFormat:(NSString *)format, ... NS_FORMAT_FUNCTION(1, 2);
@end
@interface NSAttributedString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
- (instancetype)initWithString:(NSString *)str;
- (instancetype)initWithString:(NSString *)str attributes:(nullable NSDictionary<NSAttributedStringKey, id> *)attrs;
@property (readonly, copy) NSString *string;
@property (readonly) NSUInteger length;
@end

@interface NSEnumerator<ObjectType> : NSObject <NSFastEnumeration>
- (nullable ObjectType)nextObject;
@end
@interface NSArray<__covariant ObjectType> : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
+ (instancetype)array;
+ (instancetype)arrayWithObject:(ObjectType)anObject;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)cnt;
+ (instancetype)arrayWithArray:(NSArray<ObjectType> *)array;
@property (readonly) NSUInteger count;
@property (nullable, nonatomic, readonly) ObjectType firstObject, lastObject;
- (ObjectType)objectAtIndex:(NSUInteger)index;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)idx;
- (BOOL)containsObject:(ObjectType)anObject;
- (NSUInteger)indexOfObject:(ObjectType)anObject;
- (BOOL)isEqualToArray:(NSArray<ObjectType> *)otherArray;
- (NSArray<ObjectType> *)arrayByAddingObject:(ObjectType)anObject;
- (NSArray<ObjectType> *)subarrayWithRange:(NSRange)range;
- (NSString *)componentsJoinedByString:(NSString *)separator;
- (NSArray<ObjectType> *)sortedArrayUsingSelector:(SEL)comparator;
- (void)enumerateObjectsUsingBlock:(void (NS_NOESCAPE ^)(ObjectType obj, NSUInteger idx, BOOL *stop))block;
@end
@interface NSMutableArray<ObjectType> : NSArray<ObjectType>
+ (instancetype)arrayWithCapacity:(NSUInteger)numItems;
- (void)addObject:(ObjectType)anObject;
- (void)addObjectsFromArray:(NSArray<ObjectType> *)otherArray;
- (void)insertObject:(ObjectType)anObject atIndex:(NSUInteger)index;
- (void)removeObject:(ObjectType)anObject;
- (void)removeObjectAtIndex:(NSUInteger)index;
- (void)removeLastObject;
- (void)removeAllObjects;
- (void)setObject:(ObjectType)obj atIndexedSubscript:(NSUInteger)idx;
@end
@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
+ (instancetype)dictionary;
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys count:(NSUInteger)cnt;
+ (instancetype)dictionaryWithObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
@property (readonly) NSUInteger count;
@property (readonly, copy) NSArray<KeyType> *allKeys;
@property (readonly, copy) NSArray<ObjectType> *allValues;
- (nullable ObjectType)objectForKey:(KeyType)aKey;
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
- (void)enumerateKeysAndObjectsUsingBlock:(void (NS_NOESCAPE ^)(KeyType key, ObjectType obj, BOOL *stop))block;
- (unsigned long long)fileSize;
- (nullable NSDate *)fileModificationDate;
- (nullable NSString *)fileType;
- (NSUInteger)fileSystemFileNumber;
@end
@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary<KeyType, ObjectType>
+ (instancetype)dictionaryWithCapacity:(NSUInteger)numItems;
- (void)setObject:(ObjectType)anObject forKey:(KeyType<NSCopying>)aKey;
- (void)setObject:(nullable ObjectType)obj forKeyedSubscript:(KeyType<NSCopying>)key;
- (void)removeObjectForKey:(KeyType)aKey;
- (void)removeAllObjects;
@end
@interface NSSet<__covariant ObjectType> : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
+ (instancetype)set;
+ (instancetype)setWithArray:(NSArray<ObjectType> *)array;
@property (readonly) NSUInteger count;
@property (readonly, copy) NSArray<ObjectType> *allObjects;
- (BOOL)containsObject:(ObjectType)anObject;
- (nullable ObjectType)anyObject;
@end
@interface NSMutableSet<ObjectType> : NSSet<ObjectType>
- (void)addObject:(ObjectType)object;
- (void)removeObject:(ObjectType)object;
@end
NS_ASSUME_NONNULL_END
SDK_IN_13_END
