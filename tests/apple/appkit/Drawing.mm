// Colours, fonts, images and paths.

#include "platform/linux/SystemColors.h"
#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/foundation/AttributedText.h"
#include "tests/apple/runtime/Runtime.h"

using namespace vantry;
using namespace vantry::apple;

namespace {

Appearance drawnAppearance = Appearance::light;
Rgba fillColor;
Rgba strokeColor;

} // namespace

extern "C" {
NSAppearanceName const NSAppearanceNameAqua = @"NSAppearanceNameAqua";
NSAppearanceName const NSAppearanceNameDarkAqua = @"NSAppearanceNameDarkAqua";
NSFontWeight const NSFontWeightRegular = 0;
NSFontWeight const NSFontWeightMedium = 0.23;
NSFontWeight const NSFontWeightSemibold = 0.3;
NSFontWeight const NSFontWeightBold = 0.4;
NSAttributedStringKey const NSFontAttributeName = @"NSFont";
NSAttributedStringKey const NSForegroundColorAttributeName = @"NSColor";
NSImageName const NSImageNameApplicationIcon = @"NSApplicationIcon";
}

@interface NSColor () {
@public
    Rgba _light;
    Rgba _dark;
}
@end

namespace {

NSColor* colorOf(const Rgba& light, const Rgba& dark) {
    NSColor* color = [[NSColor alloc] init];
    color->_light = light;
    color->_dark = dark;
    return color;
}

NSColor* colorOf(SystemColor role) {
    return colorOf(resolvedSystemColor(role, Appearance::light), resolvedSystemColor(role, Appearance::dark));
}

} // namespace

Rgba vantry::apple::rgbaOf(NSColor* color) {
    return drawnAppearance == Appearance::dark ? color->_dark : color->_light;
}

#define ROLE(name, role)                                                                                               \
    +(NSColor*)name {                                                                                                  \
        return colorOf(SystemColor::role);                                                                             \
    }

@implementation NSColor

ROLE(systemRedColor, red)
ROLE(systemOrangeColor, orange)
ROLE(systemYellowColor, yellow)
ROLE(systemGreenColor, green)
ROLE(systemTealColor, teal)
ROLE(systemBlueColor, blue)
ROLE(systemPinkColor, pink)
ROLE(systemCyanColor, cyan)
ROLE(systemMintColor, mint)
ROLE(systemGrayColor, gray)
ROLE(systemPurpleColor, purple)
ROLE(labelColor, label)
ROLE(secondaryLabelColor, secondaryLabel)
ROLE(tertiaryLabelColor, tertiaryLabel)
ROLE(disabledControlTextColor, disabledControlText)
ROLE(separatorColor, separator)
ROLE(windowBackgroundColor, windowBackground)

+ (NSColor*)clearColor {
    return colorOf({0, 0, 0, 0}, {0, 0, 0, 0});
}

+ (NSColor*)controlBackgroundColor {
    return colorOf({1, 1, 1}, {0.118, 0.118, 0.118});
}

+ (NSColor*)colorWithSRGBRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha {
    return colorOf({red, green, blue, alpha}, {red, green, blue, alpha});
}

// guess: a dynamic colour is resolved for the appearance that is current when it is asked
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha {
    return colorOf(rgbaOf(self).withAlpha(alpha), rgbaOf(self).withAlpha(alpha));
}

// "Called whenever the color is resolved for an appearance"; here at once, for both.
+ (NSColor*)colorWithName:(NSColorName)name dynamicProvider:(NSColor* (^)(NSAppearance*))provider {
    NSAppearance* light = [NSAppearance appearanceNamed:NSAppearanceNameAqua];
    NSAppearance* dark = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    return colorOf(provider(light)->_light, provider(dark)->_dark);
}

// For the appearance that is drawn in: "Color", dynamic colors.
- (NSColor*)colorUsingColorSpace:(NSColorSpace*)space {
    return colorOf(rgbaOf(self), rgbaOf(self));
}

- (void)getRed:(CGFloat*)red green:(CGFloat*)green blue:(CGFloat*)blue alpha:(CGFloat*)alpha {
    *red = _light.red;
    *green = _light.green;
    *blue = _light.blue;
    *alpha = _light.alpha;
}

ANSWERS(id, copy, self)

- (void)setFill {
    fillColor = rgbaOf(self);
}

- (void)setStroke {
    strokeColor = rgbaOf(self);
}

@end

@implementation NSColorSpace

SHARED(NSColorSpace, sRGBColorSpace)

@end

@implementation NSAppearance {
    NSAppearanceName _name;
}

+ (NSAppearance*)appearanceNamed:(NSAppearanceName)name {
    NSAppearance* appearance = [[NSAppearance alloc] init];
    appearance->_name = name;
    return appearance;
}

- (NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names {
    return [names containsObject:_name] ? _name : nil;
}

- (void)performAsCurrentDrawingAppearance:(void (^)(void))block {
    const Appearance before = drawnAppearance;
    drawnAppearance = [_name isEqualToString:NSAppearanceNameDarkAqua] ? Appearance::dark : Appearance::light;
    block();
    drawnAppearance = before;
}

@end

@implementation NSFont {
    Font _font;
}

+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight {
    NSFont* font = [[NSFont alloc] init];
    font->_font = {size, weight >= NSFontWeightBold       ? FontWeight::bold
                         : weight >= NSFontWeightSemibold ? FontWeight::semibold
                         : weight >= NSFontWeightMedium   ? FontWeight::medium
                                                          : FontWeight::regular};
    return font;
}

+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight {
    NSFont* font = [self systemFontOfSize:size weight:weight];
    font->_font.monospacedDigits = true;
    return font;
}

ANSWERS(NSRect, boundingRectForFont, NSMakeRect(0, 0, _font.size, fontHeight(_font)))
ANSWERS(const Font&, font, _font)

@end

Font vantry::apple::fontOf(NSFont* font) { return font ? [font font] : Font{}; }

@implementation NSGraphicsContext {
    CGContextRef _context;
    BOOL _flipped;
}

static NSGraphicsContext* current;

+ (NSGraphicsContext*)currentContext {
    return current;
}

+ (void)setCurrentContext:(NSGraphicsContext*)context {
    current = context;
}

+ (NSGraphicsContext*)graphicsContextWithCGContext:(CGContextRef)context flipped:(BOOL)flipped {
    NSGraphicsContext* result = [[NSGraphicsContext alloc] init];
    result->_context = context;
    result->_flipped = flipped;
    return result;
}

ANSWERS(CGContextRef, CGContext, _context)
ANSWERS(BOOL, isFlipped, _flipped)

@end

@implementation NSAttributedString (NSStringDrawing)

- (NSSize)size {
    const vantry::Size size = textSize(self.string.UTF8String, fontOf([self attributeNamed:NSFontAttributeName]));
    return NSMakeSize(size.width, size.height);
}

// The point is the top left in a flipped context.
- (void)drawAtPoint:(NSPoint)point {
    NSGraphicsContext* context = [NSGraphicsContext currentContext];
    if (!context.flipped)
        objc::die("text in a view that is not flipped");
    const NSSize size = self.size;
    drawText(context.CGContext, self.string.UTF8String,
             {fontOf([self attributeNamed:NSFontAttributeName]),
              rgbaOf([self attributeNamed:NSForegroundColorAttributeName])},
             {point.x, point.y, size.width, size.height});
}

@end

@implementation NSBezierPath {
    RoundedRect _shape;
}
@synthesize lineWidth;

+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)xRadius yRadius:(CGFloat)yRadius {
    NSBezierPath* path = [[NSBezierPath alloc] init];
    path->_shape = {{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}, xRadius};
    path.lineWidth = 1;
    return path;
}

- (void)fill {
    apple::fill([NSGraphicsContext currentContext].CGContext, _shape, fillColor);
}

- (void)stroke {
    apple::stroke([NSGraphicsContext currentContext].CGContext, _shape, strokeColor, self.lineWidth);
}

@end

@implementation NSImageSymbolConfiguration {
    CGFloat _pointSize;
}

+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight {
    NSImageSymbolConfiguration* configuration = [[self alloc] init];
    configuration->_pointSize = pointSize;
    return configuration;
}

ANSWERS(CGFloat, pointSize, _pointSize)

@end

@implementation NSImage
@synthesize size;

// Nil for a name that no symbol has; guess: here every name has one.
+ (instancetype)imageWithSystemSymbolName:(NSString*)name accessibilityDescription:(NSString*)description {
    if (name.length == 0)
        return nil;
    return [[self alloc] init];
}

+ (NSImage*)imageNamed:(NSImageName)name {
    return [[self alloc] init];
}

// guess: a symbol is as wide and as high as its point size
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration {
    NSImage* image = [[NSImage alloc] init];
    image.size = NSMakeSize([configuration pointSize], [configuration pointSize]);
    return image;
}

@end
