// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <AppKit/NSView.h>

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
// Colours, appearances, images, drawing
@interface NSColorSpace : NSObject <NSSecureCoding>
@property (class, readonly, strong) NSColorSpace *sRGBColorSpace, *extendedSRGBColorSpace, *displayP3ColorSpace, *deviceRGBColorSpace;
@end
@interface NSColor : NSObject <NSCopying, NSSecureCoding>
+ (NSColor *)colorWithSRGBRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
+ (nullable NSColor *)colorNamed:(NSColorName)name;
+ (NSColor *)colorWithName:(nullable NSColorName)name dynamicProvider:(NSColor * (^)(NSAppearance *appearance))dynamicProvider;
@property (class, strong, readonly) NSColor *systemRedColor, *systemGreenColor, *systemBlueColor, *systemOrangeColor,
    *systemYellowColor, *systemBrownColor, *systemPinkColor, *systemPurpleColor, *systemGrayColor, *systemTealColor,
    *systemIndigoColor, *systemMintColor, *systemCyanColor;
@property (class, strong, readonly) NSColor *labelColor, *secondaryLabelColor, *tertiaryLabelColor, *quaternaryLabelColor,
    *controlTextColor, *disabledControlTextColor, *textColor, *linkColor, *separatorColor, *controlColor, *controlAccentColor,
    *controlBackgroundColor, *textBackgroundColor, *windowBackgroundColor, *underPageBackgroundColor, *windowFrameTextColor,
    *selectedContentBackgroundColor, *selectedMenuItemTextColor, *clearColor, *blackColor, *whiteColor;
- (nullable NSColor *)colorUsingColorSpace:(NSColorSpace *)space;
- (NSColor *)colorWithAlphaComponent:(CGFloat)alpha;
@property (readonly) CGFloat redComponent, greenComponent, blueComponent, alphaComponent;
@property (readonly) CGColorRef CGColor;
- (void)getRed:(nullable CGFloat *)red green:(nullable CGFloat *)green blue:(nullable CGFloat *)blue alpha:(nullable CGFloat *)alpha;
- (void)set;
- (void)setFill;
- (void)setStroke;
@end
APPKIT_EXTERN void NSRectFill(NSRect rect);
APPKIT_EXTERN NSAppearanceName const NSAppearanceNameAqua, NSAppearanceNameDarkAqua, NSAppearanceNameVibrantLight,
    NSAppearanceNameVibrantDark, NSAppearanceNameAccessibilityHighContrastAqua, NSAppearanceNameAccessibilityHighContrastDarkAqua;
@interface NSAppearance : NSObject <NSSecureCoding>
@property (readonly, copy) NSAppearanceName name;
@property (class, strong, readonly) NSAppearance *currentDrawingAppearance;
+ (nullable NSAppearance *)appearanceNamed:(NSAppearanceName)name;
- (void)performAsCurrentDrawingAppearance:(void (NS_NOESCAPE ^)(void))block;
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName> *)appearances;
@end
@interface NSGraphicsContext : NSObject
@property (class, nullable, strong) NSGraphicsContext *currentContext;
+ (NSGraphicsContext *)graphicsContextWithCGContext:(CGContextRef)graphicsPort flipped:(BOOL)initialFlippedState;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@property (readonly) CGContextRef CGContext;
@property (readonly, getter=isFlipped) BOOL flipped;
@end
@interface NSBezierPath : NSObject <NSCopying, NSSecureCoding>
+ (NSBezierPath *)bezierPathWithRect:(NSRect)rect;
+ (NSBezierPath *)bezierPathWithOvalInRect:(NSRect)rect;
+ (NSBezierPath *)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)xRadius yRadius:(CGFloat)yRadius;
@property CGFloat lineWidth;
- (void)fill;
- (void)stroke;
- (void)addClip;
@end
APPKIT_EXTERN NSFontWeight const NSFontWeightUltraLight, NSFontWeightThin, NSFontWeightLight, NSFontWeightRegular, NSFontWeightMedium,
    NSFontWeightSemibold, NSFontWeightBold, NSFontWeightHeavy, NSFontWeightBlack;
@interface NSFont : NSObject <NSCopying, NSSecureCoding>
+ (NSFont *)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
+ (NSFont *)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
@property (readonly) CGFloat pointSize, ascender, descender, leading;
@property (readonly) NSRect boundingRectForFont;
@end
APPKIT_EXTERN NSAttributedStringKey const NSFontAttributeName, NSForegroundColorAttributeName;
@interface NSAttributedString (NSStringDrawing)
- (NSSize)size;
- (void)drawAtPoint:(NSPoint)point;
@end
typedef NS_ENUM(NSInteger, NSImageSymbolScale) { NSImageSymbolScaleSmall = 1, NSImageSymbolScaleMedium = 2, NSImageSymbolScaleLarge = 3 };
typedef NS_ENUM(NSUInteger, NSCellImagePosition) {
  NSNoImage = 0, NSImageOnly = 1, NSImageLeft = 2, NSImageRight = 3, NSImageBelow = 4, NSImageAbove = 5, NSImageOverlaps = 6,
  NSImageLeading = 7, NSImageTrailing = 8
};
typedef NS_ENUM(NSUInteger, NSCompositingOperation) {
  NSCompositingOperationClear = 0, NSCompositingOperationCopy = 1, NSCompositingOperationSourceOver = 2, NSCompositingOperationSourceIn = 3,
  NSCompositingOperationSourceAtop = 5
};
@interface NSImageSymbolConfiguration : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight scale:(NSImageSymbolScale)scale;
+ (instancetype)configurationWithScale:(NSImageSymbolScale)scale;
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor *> *)paletteColors;
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration *)configuration;
@end
@interface NSImage : NSObject <NSCopying, NSSecureCoding>
+ (nullable instancetype)imageWithSystemSymbolName:(NSString *)name accessibilityDescription:(nullable NSString *)description;
+ (nullable NSImage *)imageNamed:(NSImageName)name;
+ (NSImage *)imageWithSize:(NSSize)size flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
            drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
- (instancetype)initWithSize:(NSSize)size NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithData:(NSData *)data;
- (nullable instancetype)initWithContentsOfFile:(NSString *)fileName;
- (nullable instancetype)initWithContentsOfURL:(NSURL *)url;
- (instancetype)initWithCGImage:(CGImageRef)cgImage size:(NSSize)size;
@property NSSize size;
- (BOOL)isTemplate;  // two methods: `template` is a C++ keyword
- (void)setTemplate:(BOOL)isTemplate;
@property (readonly, getter=isValid) BOOL valid;
@property (nullable, copy) NSString *accessibilityDescription;
@property (readonly, copy) NSImageSymbolConfiguration *symbolConfiguration;
- (nullable NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)configuration;
- (nullable CGImageRef)CGImageForProposedRect:(nullable NSRect *)proposedDestRect context:(nullable NSGraphicsContext *)referenceContext
                                        hints:(nullable NSDictionary<NSImageHintKey, id> *)hints CF_RETURNS_NOT_RETAINED;
- (void)drawInRect:(NSRect)rect;
- (void)drawInRect:(NSRect)dstRect fromRect:(NSRect)srcRect operation:(NSCompositingOperation)op fraction:(CGFloat)delta;
@property (nullable, readonly, copy) NSData *TIFFRepresentation;
@end
APPKIT_EXTERN NSImageName const NSImageNameApplicationIcon;
NS_ASSUME_NONNULL_END
SDK_IN_13_END
