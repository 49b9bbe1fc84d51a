// Numbers, dates, errors, defaults, and what Core Foundation shares with Foundation.

#include "tests/apple/runtime/Runtime.h"

#include <string>

using namespace vantry;

const NSPoint NSZeroPoint{};
const NSRect NSZeroRect{};

extern "C" {

const CGRect CGRectZero{};

void CFRelease(CFTypeRef object) { (void)(__bridge_transfer id)object; }

bool CGSizeEqualToSize(CGSize one, CGSize two) { return one.width == two.width && one.height == two.height; }

NSErrorDomain const NSCocoaErrorDomain = @"NSCocoaErrorDomain";
NSErrorDomain const NSPOSIXErrorDomain = @"NSPOSIXErrorDomain";
}

BOOL NSEqualRects(NSRect one, NSRect two) {
    return NSMinX(one) == NSMinX(two) && NSMinY(one) == NSMinY(two) && CGSizeEqualToSize(one.size, two.size);
}

BOOL NSPointInRect(NSPoint point, NSRect rect) {
    return point.x >= NSMinX(rect) && point.x < NSMaxX(rect) && point.y >= NSMinY(rect) && point.y < NSMaxY(rect);
}

NSRect NSInsetRect(NSRect rect, CGFloat x, CGFloat y) {
    return NSMakeRect(rect.origin.x + x, rect.origin.y + y, rect.size.width - 2 * x, rect.size.height - 2 * y);
}

@implementation NSValue
@end

@implementation NSNumber {
    __int128 _value; ///< holds whatever is 64 bits long
}

+ (NSNumber*)numberWithLongLong:(long long)value {
    NSNumber* number = [[NSNumber alloc] init];
    number->_value = value;
    return number;
}

+ (NSNumber*)numberWithUnsignedLongLong:(unsigned long long)value {
    NSNumber* number = [[NSNumber alloc] init];
    number->_value = value;
    return number;
}

+ (NSNumber*)numberWithBool:(BOOL)value {
    return [self numberWithLongLong:value];
}

+ (NSNumber*)numberWithInt:(int)value {
    return [self numberWithLongLong:value];
}

ANSWERS(BOOL, boolValue, _value != 0)
ANSWERS(int, intValue, static_cast<int>(_value))
ANSWERS(long long, longLongValue, static_cast<long long>(_value))

- (NSComparisonResult)compare:(NSNumber*)other {
    return _value < other->_value ? NSOrderedAscending : _value > other->_value ? NSOrderedDescending : NSOrderedSame;
}

@end

@implementation NSDate {
    NSTimeInterval _interval;
}

+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds {
    constexpr NSTimeInterval referenceDate = 978'307'200; // "00:00:00 UTC on 1 January 2001"
    NSDate* date = [[self alloc] init];
    date->_interval = seconds - referenceDate;
    return date;
}

ANSWERS(NSTimeInterval, timeIntervalSinceReferenceDate, _interval)

@end

@implementation NSError {
    NSErrorDomain _domain;
    NSInteger _code;
}

+ (instancetype)errorWithDomain:(NSErrorDomain)domain code:(NSInteger)code userInfo:(NSDictionary*)userInfo {
    NSError* error = [[NSError alloc] init];
    error->_domain = domain;
    error->_code = code;
    return error;
}

ANSWERS(NSErrorDomain, domain, _domain)
ANSWERS(NSInteger, code, _code)

- (NSString*)localizedDescription { // guess: the text that macOS has for an error without one
    return [NSString stringWithUTF8String:("The operation couldn’t be completed. (" + std::string(_domain.UTF8String) +
                                           " error " + std::to_string(_code) + ".)")
                                              .c_str()];
}

@end

@implementation NSUserDefaults {
    NSMutableDictionary* _values;
}

+ (NSUserDefaults*)standardUserDefaults {
    static NSUserDefaults* const defaults = [[NSUserDefaults alloc] initWithSuiteName:nil];
    return defaults;
}

- (instancetype)initWithSuiteName:(NSString*)name {
    _values = [NSMutableDictionary dictionary];
    return self;
}

// NO when there is none; also true for the texts "YES" and "true" and numbers other than 0: its documentation.
- (BOOL)boolForKey:(NSString*)key {
    id value = [_values objectForKey:key];
    if ([value isKindOfClass:[NSNumber class]])
        return [value boolValue];
    return [value isKindOfClass:[NSString class]] && ([value isEqual:@"YES"] || [value isEqual:@"true"]);
}

- (id)objectForKey:(NSString*)key {
    return [_values objectForKey:key];
}

- (void)setObject:(id)value forKey:(NSString*)key {
    [_values setObject:value forKey:key];
}

- (void)setBool:(BOOL)value forKey:(NSString*)key {
    [self setObject:[NSNumber numberWithBool:value] forKey:key];
}

- (void)removeObjectForKey:(NSString*)key {
    [_values removeObjectForKey:key];
}

@end
