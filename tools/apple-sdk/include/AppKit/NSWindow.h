// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <AppKit/NSControl.h>

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
// Status bar
static const CGFloat NSVariableStatusItemLength = -1.0, NSSquareStatusItemLength = -2.0;
typedef NS_OPTIONS(NSUInteger, NSStatusItemBehavior) {
  NSStatusItemBehaviorRemovalAllowed = 1 << 1, NSStatusItemBehaviorTerminationOnRemoval = 1 << 2
};
@interface NSStatusBar : NSObject
@property (class, readonly, strong) NSStatusBar *systemStatusBar;
- (NSStatusItem *)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem *)item;
@property (readonly) CGFloat thickness;
@property (readonly, getter=isVertical) BOOL vertical;
@end
@interface NSStatusItem : NSObject
@property (nullable, readonly, weak) NSStatusBar *statusBar;
@property CGFloat length;
@property (nullable, strong) NSMenu *menu;
@property (nullable, readonly, strong) NSStatusBarButton *button;
@property NSStatusItemBehavior behavior;
@property (getter=isVisible) BOOL visible;
@property (null_resettable, copy) NSStatusItemAutosaveName autosaveName;
@end
@interface NSStatusBarButton : NSButton
@property BOOL appearsDisabled;
@end

// Windows and screens
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
  NSWindowStyleMaskBorderless = 0, NSWindowStyleMaskTitled = 1 << 0, NSWindowStyleMaskClosable = 1 << 1,
  NSWindowStyleMaskMiniaturizable = 1 << 2, NSWindowStyleMaskResizable = 1 << 3, NSWindowStyleMaskUtilityWindow = 1 << 4,
  NSWindowStyleMaskNonactivatingPanel = 1 << 7, NSWindowStyleMaskFullSizeContentView = 1 << 15
};
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
  NSWindowCollectionBehaviorDefault = 0, NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
  NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1, NSWindowCollectionBehaviorManaged = 1 << 2,
  NSWindowCollectionBehaviorTransient = 1 << 3, NSWindowCollectionBehaviorStationary = 1 << 4,
  NSWindowCollectionBehaviorIgnoresCycle = 1 << 6, NSWindowCollectionBehaviorFullScreenPrimary = 1 << 7,
  NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8, NSWindowCollectionBehaviorFullScreenNone = 1 << 9
};
static const NSWindowLevel NSNormalWindowLevel = 0, NSFloatingWindowLevel = 3, NSMainMenuWindowLevel = 24, NSStatusWindowLevel = 25,
    NSPopUpMenuWindowLevel = 101;
@interface NSWindow : NSResponder <NSAppearanceCustomization, NSUserInterfaceItemIdentification, NSAccessibility>
- (instancetype)initWithContentRect:(NSRect)contentRect styleMask:(NSWindowStyleMask)style backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag NS_DESIGNATED_INITIALIZER;
@property (copy) NSString *title;
@property (nullable, strong) __kindof NSView *contentView;
@property (nullable, strong) NSViewController *contentViewController;
@property (nullable, weak) id<NSWindowDelegate> delegate;
@property (nullable, readonly, strong) NSScreen *screen;
@property (readonly) NSRect frame;
@property NSWindowStyleMask styleMask;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property (readonly) CGFloat backingScaleFactor;
@property (readonly) NSInteger windowNumber;
@property (getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property (getter=isOpaque) BOOL opaque;
@property BOOL ignoresMouseEvents;
@property BOOL hasShadow, hidesOnDeactivate, titlebarAppearsTransparent;
@property NSSize minSize, contentMinSize;
@property BOOL preventsApplicationTerminationWhenModal;
@property (nullable, readonly, strong) NSWindow *attachedSheet;
@property (readonly, getter=isMiniaturized) BOOL miniaturized;
@property (nullable, readonly, weak) NSResponder *firstResponder;
@property (null_resettable, copy) NSColor *backgroundColor;
@property (readonly, getter=isVisible) BOOL visible;
@property (readonly, getter=isKeyWindow) BOOL keyWindow;
@property (readonly) BOOL canBecomeKeyWindow, canBecomeMainWindow;
- (NSRect)convertRectToScreen:(NSRect)rect;
- (NSPoint)convertPointToScreen:(NSPoint)point;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (void)setFrameOrigin:(NSPoint)point;
- (void)setContentSize:(NSSize)size;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)makeKeyWindow;
- (void)orderFront:(nullable id)sender;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (BOOL)makeFirstResponder:(nullable NSResponder *)responder;
- (void)center;
- (void)close;
- (void)performClose:(nullable id)sender;
- (void)deminiaturize:(nullable id)sender;
- (void)endSheet:(NSWindow *)sheetWindow returnCode:(NSModalResponse)returnCode;
@end
@protocol NSWindowDelegate <NSObject>
@optional
- (BOOL)windowShouldClose:(NSWindow *)sender;
- (void)windowWillClose:(NSNotification *)notification;
@end
APPKIT_EXTERN NSNotificationName const NSWindowDidMoveNotification, NSWindowDidResignKeyNotification, NSWindowDidBecomeKeyNotification,
    NSWindowWillCloseNotification, NSWindowDidChangeScreenNotification, NSWindowDidChangeBackingPropertiesNotification,
    NSWindowDidChangeOcclusionStateNotification;
APPKIT_EXTERN NSDeviceDescriptionKey const NSDeviceResolution, NSDeviceSize, NSDeviceIsScreen;
@interface NSScreen : NSObject
@property (class, readonly, copy) NSArray<NSScreen *> *screens;
@property (class, nullable, readonly, strong) NSScreen *mainScreen;
@property (readonly) NSRect frame, visibleFrame;
@property (readonly) CGFloat backingScaleFactor;
@property (readonly) NSEdgeInsets safeAreaInsets;
@property (readonly, copy) NSDictionary<NSDeviceDescriptionKey, id> *deviceDescription;
@property (readonly, copy) NSString *localizedName;
@end

// Popover
typedef NS_ENUM(NSInteger, NSPopoverBehavior) {
  NSPopoverBehaviorApplicationDefined = 0, NSPopoverBehaviorTransient = 1, NSPopoverBehaviorSemitransient = 2
};
@interface NSPopover : NSResponder <NSAppearanceCustomization, NSAccessibility>
@property (nullable, weak) id<NSPopoverDelegate> delegate;
@property NSPopoverBehavior behavior;
@property BOOL animates;
@property NSSize contentSize;
@property NSRect positioningRect;
@property (nullable, strong) NSViewController *contentViewController;
@property (readonly, getter=isShown) BOOL shown;
@property (readonly, getter=isDetached) BOOL detached;
- (void)showRelativeToRect:(NSRect)positioningRect ofView:(NSView *)positioningView preferredEdge:(NSRectEdge)preferredEdge;
- (void)performClose:(nullable id)sender;
- (void)close;
@end
@protocol NSPopoverDelegate <NSObject>
@optional
- (BOOL)popoverShouldClose:(NSPopover *)popover;
- (BOOL)popoverShouldDetach:(NSPopover *)popover;
- (void)popoverWillShow:(NSNotification *)notification;
- (void)popoverDidShow:(NSNotification *)notification;
- (void)popoverWillClose:(NSNotification *)notification;
- (void)popoverDidClose:(NSNotification *)notification;
@end

// Menus
@interface NSMenu : NSObject <NSCopying, NSCoding, NSUserInterfaceItemIdentification>
- (instancetype)initWithTitle:(NSString *)title NS_DESIGNATED_INITIALIZER;
@property (copy) NSString *title;
@property BOOL autoenablesItems;
@property (nullable, weak) id<NSMenuDelegate> delegate;
@property (copy) NSArray<NSMenuItem *> *itemArray;
@property (readonly) NSInteger numberOfItems;
@property (readonly) NSSize size;
+ (void)popUpContextMenu:(NSMenu *)menu withEvent:(NSEvent *)event forView:(NSView *)view;
- (BOOL)popUpMenuPositioningItem:(nullable NSMenuItem *)item atLocation:(NSPoint)location inView:(nullable NSView *)view;
- (void)addItem:(NSMenuItem *)newItem;
- (void)insertItem:(NSMenuItem *)newItem atIndex:(NSInteger)index;
- (NSMenuItem *)addItemWithTitle:(NSString *)string action:(nullable SEL)selector keyEquivalent:(NSString *)charCode;
- (void)setSubmenu:(nullable NSMenu *)menu forItem:(NSMenuItem *)item;
- (void)removeItem:(NSMenuItem *)item;
- (void)removeAllItems;
- (nullable NSMenuItem *)itemWithTag:(NSInteger)tag;
- (void)cancelTracking;
@end
@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu *)menu;
- (void)menuWillOpen:(NSMenu *)menu;
- (void)menuDidClose:(NSMenu *)menu;
@end
@interface NSMenuItem : NSObject <NSCopying, NSCoding, NSUserInterfaceItemIdentification>
+ (NSMenuItem *)separatorItem;
- (instancetype)initWithTitle:(NSString *)string action:(nullable SEL)selector keyEquivalent:(NSString *)charCode NS_DESIGNATED_INITIALIZER;
@property (copy) NSString *title;
@property (nullable, copy) NSAttributedString *attributedTitle;
@property (nullable, weak) id target;
@property (nullable) SEL action;
@property NSInteger tag, indentationLevel;
@property (copy) NSString *keyEquivalent;
@property NSEventModifierFlags keyEquivalentModifierMask;
@property (nullable, strong) NSImage *image;
@property NSControlStateValue state;
@property (getter=isEnabled) BOOL enabled;
@property (getter=isHidden) BOOL hidden;
@property (nullable, strong) id representedObject;
@property (nullable, strong) NSMenu *submenu;
@property (nullable, strong) NSView *view;
@property (nullable, copy) NSString *toolTip;
@end
NS_ASSUME_NONNULL_END
SDK_IN_13_END
