// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <CoreGraphics/CGGeometry.h>
#include <Foundation/Foundation.h>
#include <SdkAvailability.h>

#ifdef __cplusplus
#define APPKIT_EXTERN extern "C"
#else
#define APPKIT_EXTERN extern
#endif

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
typedef struct CF_BRIDGED_TYPE(id) CGImage *CGImageRef;
typedef struct CF_BRIDGED_TYPE(id) CGContext *CGContextRef;
typedef struct CF_BRIDGED_TYPE(id) CGColor *CGColorRef;

@class CALayer, NSAppearance, NSClipView, NSApplication, NSButton, NSCell, NSColor, NSColorSpace, NSCursor, NSEvent, NSFont, NSGraphicsContext,
    NSImage, NSLayoutConstraint, NSLayoutDimension, NSLayoutXAxisAnchor, NSLayoutYAxisAnchor, NSMenu, NSMenuItem, NSPopover, NSRunningApplication, NSScreen, NSStatusBar, NSStatusBarButton,
    NSStatusItem, NSTrackingArea, NSView, NSViewController, NSWindow, NSWindowController, UTType;
@protocol NSApplicationDelegate, NSMenuDelegate, NSPopoverDelegate, NSWindowDelegate;
typedef NSString *NSAppearanceName, *NSAccessibilityRole, *NSAccessibilitySubrole, *NSAccessibilityNotificationName,
    *NSDeviceDescriptionKey, *NSImageName, *NSImageHintKey, *NSUserInterfaceItemIdentifier, *NSWorkspaceDesktopImageOptionKey,
    *NSStatusItemAutosaveName, *NSColorName;
typedef CGFloat NSFontWeight;
typedef NSInteger NSWindowLevel, NSControlStateValue, NSModalResponse;
typedef float NSLayoutPriority;

// Accessibility (the setters and getters a view or button uses)
APPKIT_EXTERN NSAccessibilityRole const NSAccessibilityUnknownRole, NSAccessibilityButtonRole, NSAccessibilityMenuButtonRole,
    NSAccessibilityImageRole, NSAccessibilityStaticTextRole, NSAccessibilityGroupRole, NSAccessibilityLevelIndicatorRole,
    NSAccessibilityProgressIndicatorRole, NSAccessibilityValueIndicatorRole, NSAccessibilityListRole;
APPKIT_EXTERN NSAccessibilityNotificationName const NSAccessibilityValueChangedNotification, NSAccessibilityTitleChangedNotification,
    NSAccessibilityAnnouncementRequestedNotification;
APPKIT_EXTERN void NSAccessibilityPostNotification(id element, NSAccessibilityNotificationName notification);
@protocol NSAccessibility <NSObject>
@property (getter=isAccessibilityElement) BOOL accessibilityElement;
@property (getter=isAccessibilityEnabled) BOOL accessibilityEnabled;
@property (getter=isAccessibilityHidden) BOOL accessibilityHidden;
@property (nullable, copy) NSString *accessibilityLabel, *accessibilityHelp, *accessibilityTitle, *accessibilityIdentifier,
    *accessibilityValueDescription, *accessibilityRoleDescription;
@property (nullable, strong) id accessibilityValue, accessibilityMinValue, accessibilityMaxValue;
@property (nullable, copy) NSAccessibilityRole accessibilityRole;
@property (nullable, copy) NSAccessibilitySubrole accessibilitySubrole;
@property (nullable, copy) NSArray *accessibilityChildren;
@property (nullable, weak) id accessibilityParent, accessibilityTitleUIElement;
@property NSRect accessibilityFrame;
- (BOOL)accessibilityPerformPress;
- (BOOL)accessibilityPerformShowMenu;
@end
@protocol NSUserInterfaceItemIdentification
@property (nullable, copy) NSUserInterfaceItemIdentifier identifier;
@end
@protocol NSAppearanceCustomization <NSObject>
@property (nullable, strong) NSAppearance *appearance;
@property (readonly, strong) NSAppearance *effectiveAppearance;
@end

// Events
typedef NS_ENUM(NSUInteger, NSEventType) {
  NSEventTypeLeftMouseDown = 1, NSEventTypeLeftMouseUp = 2, NSEventTypeRightMouseDown = 3, NSEventTypeRightMouseUp = 4,
  NSEventTypeMouseMoved = 5, NSEventTypeLeftMouseDragged = 6, NSEventTypeRightMouseDragged = 7, NSEventTypeMouseEntered = 8,
  NSEventTypeMouseExited = 9, NSEventTypeKeyDown = 10, NSEventTypeKeyUp = 11, NSEventTypeFlagsChanged = 12,
  NSEventTypeAppKitDefined = 13, NSEventTypeSystemDefined = 14, NSEventTypeApplicationDefined = 15, NSEventTypePeriodic = 16,
  NSEventTypeScrollWheel = 22, NSEventTypeOtherMouseDown = 25, NSEventTypeOtherMouseUp = 26, NSEventTypeOtherMouseDragged = 27
};
typedef NS_OPTIONS(unsigned long long, NSEventMask) {
  NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown, NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
  NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown, NSEventMaskRightMouseUp = 1ULL << NSEventTypeRightMouseUp,
  NSEventMaskMouseMoved = 1ULL << NSEventTypeMouseMoved, NSEventMaskLeftMouseDragged = 1ULL << NSEventTypeLeftMouseDragged,
  NSEventMaskKeyDown = 1ULL << NSEventTypeKeyDown, NSEventMaskKeyUp = 1ULL << NSEventTypeKeyUp,
  NSEventMaskFlagsChanged = 1ULL << NSEventTypeFlagsChanged, NSEventMaskScrollWheel = 1ULL << NSEventTypeScrollWheel,
  NSEventMaskOtherMouseDown = 1ULL << NSEventTypeOtherMouseDown, NSEventMaskOtherMouseUp = 1ULL << NSEventTypeOtherMouseUp,
  NSEventMaskAny = NSUIntegerMax
};
typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
  NSEventModifierFlagCapsLock = 1 << 16, NSEventModifierFlagShift = 1 << 17, NSEventModifierFlagControl = 1 << 18,
  NSEventModifierFlagOption = 1 << 19, NSEventModifierFlagCommand = 1 << 20, NSEventModifierFlagNumericPad = 1 << 21,
  NSEventModifierFlagFunction = 1 << 23, NSEventModifierFlagDeviceIndependentFlagsMask = 0xffff0000UL
};
@interface NSEvent : NSObject <NSCopying, NSCoding>
@property (readonly) NSEventType type;
@property (readonly) NSEventModifierFlags modifierFlags;
@property (readonly) NSTimeInterval timestamp;
@property (nullable, readonly, weak) NSWindow *window;
@property (readonly) NSPoint locationInWindow;
@property (readonly) NSInteger buttonNumber, clickCount, eventNumber;
@property (nullable, readonly, copy) NSString *characters, *charactersIgnoringModifiers;
@property (getter=isARepeat, readonly) BOOL ARepeat;
@property (readonly) unsigned short keyCode;
@property (class, readonly) NSEventModifierFlags modifierFlags;
@property (class, readonly) NSPoint mouseLocation;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent *event))block;
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent *_Nullable (^)(NSEvent *event))block;
+ (void)removeMonitor:(id)eventMonitor;
@end

// Responders, layout, views
@interface NSResponder : NSObject <NSCoding>
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder *)coder NS_DESIGNATED_INITIALIZER;
@property (nullable, assign) NSResponder *nextResponder;
@property (readonly) BOOL acceptsFirstResponder;
- (void)mouseDown:(NSEvent *)event;
- (void)mouseUp:(NSEvent *)event;
- (void)rightMouseDown:(NSEvent *)event;
- (void)rightMouseUp:(NSEvent *)event;
- (void)mouseEntered:(NSEvent *)event;
- (void)mouseExited:(NSEvent *)event;
- (void)keyDown:(NSEvent *)event;
- (BOOL)performKeyEquivalent:(NSEvent *)event;
@property (nullable, strong) NSMenu *menu;
@end
@interface NSLayoutAnchor<AnchorType> : NSObject <NSCopying, NSCoding>
- (NSLayoutConstraint *)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType> *)anchor;
- (NSLayoutConstraint *)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType> *)anchor constant:(CGFloat)c;
- (NSLayoutConstraint *)constraintGreaterThanOrEqualToAnchor:(NSLayoutAnchor<AnchorType> *)anchor;
- (NSLayoutConstraint *)constraintLessThanOrEqualToAnchor:(NSLayoutAnchor<AnchorType> *)anchor;
- (NSLayoutConstraint *)constraintGreaterThanOrEqualToAnchor:(NSLayoutAnchor<AnchorType> *)anchor constant:(CGFloat)c;
- (NSLayoutConstraint *)constraintLessThanOrEqualToAnchor:(NSLayoutAnchor<AnchorType> *)anchor constant:(CGFloat)c;
@end
@interface NSLayoutXAxisAnchor : NSLayoutAnchor<NSLayoutXAxisAnchor *>
@end
@interface NSLayoutYAxisAnchor : NSLayoutAnchor<NSLayoutYAxisAnchor *>
@end
@interface NSLayoutDimension : NSLayoutAnchor<NSLayoutDimension *>
- (NSLayoutConstraint *)constraintEqualToConstant:(CGFloat)c;
- (NSLayoutConstraint *)constraintGreaterThanOrEqualToConstant:(CGFloat)c;
- (NSLayoutConstraint *)constraintLessThanOrEqualToConstant:(CGFloat)c;
@end
static const NSLayoutPriority NSLayoutPriorityRequired = 1000, NSLayoutPriorityDefaultHigh = 750, NSLayoutPriorityDefaultLow = 250;
typedef NS_ENUM(NSInteger, NSLayoutConstraintOrientation) {
  NSLayoutConstraintOrientationHorizontal = 0, NSLayoutConstraintOrientationVertical = 1
};
typedef NS_ENUM(NSInteger, NSUserInterfaceLayoutOrientation) {
  NSUserInterfaceLayoutOrientationHorizontal = 0, NSUserInterfaceLayoutOrientationVertical = 1
};
typedef NS_ENUM(NSInteger, NSLayoutAttribute) {
  NSLayoutAttributeLeft = 1, NSLayoutAttributeRight = 2, NSLayoutAttributeTop = 3, NSLayoutAttributeBottom = 4,
  NSLayoutAttributeLeading = 5, NSLayoutAttributeTrailing = 6, NSLayoutAttributeWidth = 7, NSLayoutAttributeHeight = 8,
  NSLayoutAttributeCenterX = 9, NSLayoutAttributeCenterY = 10, NSLayoutAttributeNotAnAttribute = 0
};
@interface NSLayoutConstraint : NSObject
+ (void)activateConstraints:(NSArray<NSLayoutConstraint *> *)constraints;
+ (void)deactivateConstraints:(NSArray<NSLayoutConstraint *> *)constraints;
@property (getter=isActive) BOOL active;
@property CGFloat constant;
@property NSLayoutPriority priority;
@end
typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) {
  NSViewNotSizable = 0, NSViewMinXMargin = 1, NSViewWidthSizable = 2, NSViewMaxXMargin = 4, NSViewMinYMargin = 8,
  NSViewHeightSizable = 16, NSViewMaxYMargin = 32
};
@interface NSView : NSResponder <NSAppearanceCustomization, NSUserInterfaceItemIdentification, NSAccessibility>
- (instancetype)initWithFrame:(NSRect)frameRect NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder *)coder NS_DESIGNATED_INITIALIZER;
@property (nullable, readonly, assign) NSWindow *window;
@property (nullable, readonly, assign) NSView *superview;
@property (copy) NSArray<__kindof NSView *> *subviews;
@property NSRect frame, bounds;
@property NSAutoresizingMaskOptions autoresizingMask;
@property (getter=isHidden) BOOL hidden;
@property CGFloat alphaValue;
@property BOOL needsDisplay, needsLayout, wantsLayer, translatesAutoresizingMaskIntoConstraints;
@property (nullable, strong) CALayer *layer;
@property (readonly, getter=isFlipped) BOOL flipped;
@property (readonly, getter=isOpaque) BOOL opaque;
@property (readonly) BOOL wantsUpdateLayer, allowsVibrancy;
@property (readonly) NSSize intrinsicContentSize, fittingSize;
@property (nullable, copy) NSString *toolTip;
@property (readonly, strong) NSLayoutXAxisAnchor *leadingAnchor, *trailingAnchor, *leftAnchor, *rightAnchor, *centerXAnchor;
@property (readonly, strong) NSLayoutYAxisAnchor *topAnchor, *bottomAnchor, *centerYAnchor;
@property (readonly, strong) NSLayoutDimension *widthAnchor, *heightAnchor;
- (void)addSubview:(NSView *)view;
- (void)removeFromSuperview;
- (void)setFrameSize:(NSSize)newSize;
- (void)setFrameOrigin:(NSPoint)newOrigin;
- (NSPoint)convertPoint:(NSPoint)point fromView:(nullable NSView *)view;
- (NSPoint)convertPoint:(NSPoint)point toView:(nullable NSView *)view;
- (NSRect)convertRect:(NSRect)rect fromView:(nullable NSView *)view;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView *)view;
- (NSRect)convertRectToBacking:(NSRect)rect;
- (void)setNeedsDisplayInRect:(NSRect)invalidRect;
- (void)display;
- (void)drawRect:(NSRect)dirtyRect;
- (void)layout;
- (void)updateLayer;
- (void)invalidateIntrinsicContentSize;
- (nullable NSView *)hitTest:(NSPoint)point;
- (BOOL)acceptsFirstMouse:(nullable NSEvent *)event;
- (void)viewDidMoveToWindow;
- (void)viewDidChangeBackingProperties;
- (void)viewDidChangeEffectiveAppearance;
- (void)addTrackingArea:(NSTrackingArea *)trackingArea;
- (void)setContentHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation;
- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation;
- (void)layoutSubtreeIfNeeded;
- (BOOL)isDescendantOf:(NSView *)view;
@end
@interface NSViewController : NSResponder
@property (strong) NSView *view;
@property (nullable, copy) NSString *title;
@property NSSize preferredContentSize;
- (void)loadView;
- (void)viewDidLoad;
- (void)viewWillAppear;
- (void)viewDidAppear;
- (void)viewWillDisappear;
- (void)viewDidDisappear;
@end
NS_ASSUME_NONNULL_END
SDK_IN_13_END
