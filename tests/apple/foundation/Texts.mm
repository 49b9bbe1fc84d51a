// NSString and NSAttributedString, on UTF-8.

#include "base/Utf8.h"
#include "tests/apple/foundation/AttributedText.h"
#include "tests/apple/runtime/Runtime.h"

#include <QString>
#include <cstring>
#include <map>
#include <string>

using namespace vantry;

namespace {

/// What the compiler makes of a literal.
struct Literal {
    const void* isa;
    int flags;
    const void* bytes; ///< ASCII, or UTF-16 where `flags` says so
    long length;
};
constexpr int utf16Flags = 0x7d0;

std::string utf8Of(const Literal& literal) {
    if (literal.flags == utf16Flags)
        objc::die("a literal that is not ASCII");
    return {static_cast<const char*>(literal.bytes), static_cast<std::size_t>(literal.length)};
}

NSString* stringOf(const std::string& text) { return [[NSString alloc] initWithUTF8String:text.c_str()]; }

} // namespace

@interface VantryLiteral : NSString
@end

__asm__(".globl __CFConstantStringClassReference\n"
        ".set __CFConstantStringClassReference, OBJC_CLASS_$_VantryLiteral\n");

@implementation NSString {
    std::string _text;
}

+ (instancetype)stringWithUTF8String:(const char*)text {
    return [[self alloc] initWithUTF8String:text];
}

ANSWERS(instancetype, init, self)

- (instancetype)initWithUTF8String:(const char*)text {
    return [self initWithBytes:text length:std::strlen(text) encoding:NSUTF8StringEncoding];
}

// Nil when the bytes are not text in the encoding: documentation of initWithBytes:length:encoding:.
- (instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding {
    const std::string text(static_cast<const char*>(bytes), length);
    if (encoding != NSUTF8StringEncoding)
        objc::die("a text in an encoding that is not UTF-8");
    if (!isUtf8(text))
        return nil;
    _text = text;
    return self;
}

ANSWERS(const char*, UTF8String, _text.c_str())

- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding {
    return _text.size();
}

ANSWERS(id, copy, self)

- (BOOL)isEqualToString:(NSString*)other {
    return other && std::strcmp(self.UTF8String, other.UTF8String) == 0;
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[NSString class]] && [self isEqualToString:other];
}

- (NSUInteger)length { // in units of UTF-16
    NSUInteger units = 0;
    for (const char* byte = self.UTF8String; *byte != '\0'; ++byte)
        units += (*byte & 0xc0) == 0x80 ? 0 : (*byte & 0xf8) == 0xf0 ? 2 : 1;
    return units;
}

- (NSString*)precomposedStringWithCanonicalMapping {
    const QByteArray text = QString::fromUtf8(self.UTF8String).normalized(QString::NormalizationForm_C).toUtf8();
    return stringOf({text.data(), static_cast<std::size_t>(text.size())});
}

ANSWERS(NSString*, description, self)

- (NSString*)lowercaseString { // guess: nobody asks about letters beyond ASCII
    std::string text = self.UTF8String;
    for (char& each : text)
        each = each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    return stringOf(text);
}

@end

@implementation VantryLiteral

- (const char*)UTF8String {
    static std::map<const void*, std::string> texts;
    const auto [place, isNew] = texts.try_emplace((__bridge void*)self);
    if (isNew)
        place->second = utf8Of(*static_cast<const Literal*>((__bridge void*)self));
    return place->second.c_str();
}

- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding {
    return std::strlen(self.UTF8String);
}

@end

@implementation NSAttributedString {
    NSString* _string;
    NSDictionary* _attributes;
}

- (instancetype)initWithString:(NSString*)string attributes:(NSDictionary<NSAttributedStringKey, id>*)attributes {
    _string = string;
    _attributes = attributes;
    return self;
}

ANSWERS(NSString*, string, _string)

- (id)attributeNamed:(NSString*)name {
    return [_attributes objectForKey:name];
}

@end
