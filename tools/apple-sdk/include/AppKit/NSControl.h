// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <AppKit/NSGraphics.h>

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
// Controls and buttons
static const NSControlStateValue NSControlStateValueMixed = -1, NSControlStateValueOff = 0, NSControlStateValueOn = 1;
typedef NS_ENUM(NSUInteger, NSControlSize) { NSControlSizeRegular = 0, NSControlSizeSmall = 1, NSControlSizeMini = 2, NSControlSizeLarge = 3 };
typedef NS_ENUM(NSUInteger, NSLineBreakMode) {
  NSLineBreakByWordWrapping = 0, NSLineBreakByCharWrapping, NSLineBreakByClipping, NSLineBreakByTruncatingHead,
  NSLineBreakByTruncatingTail, NSLineBreakByTruncatingMiddle
};
#if defined(__arm64__)  // the two systems number them differently
typedef NS_ENUM(NSInteger, NSTextAlignment) {
  NSTextAlignmentLeft = 0, NSTextAlignmentCenter = 1, NSTextAlignmentRight = 2, NSTextAlignmentJustified = 3, NSTextAlignmentNatural = 4
};
#else
typedef NS_ENUM(NSInteger, NSTextAlignment) {
  NSTextAlignmentLeft = 0, NSTextAlignmentRight = 1, NSTextAlignmentCenter = 2, NSTextAlignmentJustified = 3, NSTextAlignmentNatural = 4
};
#endif
@interface NSControl : NSView
@property (nullable, weak) id target;
@property (nullable) SEL action;
@property NSInteger tag;
@property (getter=isEnabled) BOOL enabled;
@property (getter=isHighlighted) BOOL highlighted;
@property (copy) NSString *stringValue;
@property (nullable, strong) __kindof NSCell *cell;
@property (nullable, strong) NSFont *font;
@property NSTextAlignment alignment;
@property NSLineBreakMode lineBreakMode;
@property BOOL usesSingleLineMode, allowsExpansionToolTips;
@property NSControlSize controlSize;
- (NSInteger)sendActionOn:(NSEventMask)mask;
- (BOOL)sendAction:(nullable SEL)action to:(nullable id)target;
- (void)sizeToFit;
- (void)performClick:(nullable id)sender;
@end
@interface NSButton : NSControl
+ (instancetype)buttonWithTitle:(NSString *)title target:(nullable id)target action:(nullable SEL)action;
@property (copy) NSString *title;
@property (copy) NSAttributedString *attributedTitle;
@property (nullable, strong) NSImage *image;
@property NSCellImagePosition imagePosition;
@property (getter=isBordered) BOOL bordered;
@property NSControlStateValue state;
@property (copy) NSString *keyEquivalent;
+ (instancetype)checkboxWithTitle:(NSString *)title target:(nullable id)target action:(nullable SEL)action;
+ (instancetype)buttonWithImage:(NSImage *)image target:(nullable id)target action:(nullable SEL)action;
@property BOOL allowsMixedState, hasDestructiveAction;
@property (nullable, copy) NSColor *contentTintColor;
- (void)highlight:(BOOL)flag;
@end
@interface NSPopUpButton : NSButton
- (instancetype)initWithFrame:(NSRect)buttonFrame pullsDown:(BOOL)flag NS_DESIGNATED_INITIALIZER;
- (void)addItemsWithTitles:(NSArray<NSString *> *)itemTitles;
- (void)removeAllItems;
@property (readonly, copy) NSArray<NSString *> *itemTitles;
- (void)selectItemAtIndex:(NSInteger)index;
@property (readonly) NSInteger indexOfSelectedItem;
@end
typedef NS_ENUM(NSUInteger, NSSegmentSwitchTracking) {
  NSSegmentSwitchTrackingSelectOne = 0, NSSegmentSwitchTrackingSelectAny = 1, NSSegmentSwitchTrackingMomentary = 2
};
@interface NSSegmentedControl : NSControl
+ (instancetype)segmentedControlWithLabels:(NSArray<NSString *> *)labels trackingMode:(NSSegmentSwitchTracking)trackingMode
                                    target:(nullable id)target action:(nullable SEL)action;
@property NSInteger segmentCount, selectedSegment;
- (void)setLabel:(NSString *)label forSegment:(NSInteger)segment;
- (nullable NSString *)labelForSegment:(NSInteger)segment;
@end
@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString *)stringValue;
+ (instancetype)wrappingLabelWithString:(NSString *)stringValue;
@property (nullable, copy) NSColor *textColor, *backgroundColor;
@property BOOL drawsBackground;
@property (getter=isEditable) BOOL editable;
@property (getter=isSelectable) BOOL selectable;
@property NSInteger maximumNumberOfLines;
@property CGFloat preferredMaxLayoutWidth;
@end
@interface NSCell : NSObject <NSCopying, NSCoding>
@property BOOL truncatesLastVisibleLine, wraps;
@end
typedef NS_ENUM(NSUInteger, NSImageScaling) {
  NSImageScaleProportionallyDown = 0, NSImageScaleAxesIndependently = 1, NSImageScaleNone = 2, NSImageScaleProportionallyUpOrDown = 3
};
@interface NSImageView : NSControl
+ (instancetype)imageViewWithImage:(NSImage *)image;
@property (nullable, strong) NSImage *image;
@property (nullable, copy) NSColor *contentTintColor;
@property (nullable, copy) NSImageSymbolConfiguration *symbolConfiguration;
@property NSImageScaling imageScaling;
@end
typedef NS_ENUM(NSUInteger, NSProgressIndicatorStyle) { NSProgressIndicatorStyleBar = 0, NSProgressIndicatorStyleSpinning = 1 };
@interface NSProgressIndicator : NSView
@property NSProgressIndicatorStyle style;
@property NSControlSize controlSize;
@property (getter=isDisplayedWhenStopped) BOOL displayedWhenStopped;
@property (getter=isIndeterminate) BOOL indeterminate;
- (void)startAnimation:(nullable id)sender;
- (void)stopAnimation:(nullable id)sender;
@end
typedef NS_ENUM(NSUInteger, NSBoxType) { NSBoxPrimary = 0, NSBoxSeparator = 2, NSBoxCustom = 4 };
@interface NSBox : NSView
@property NSBoxType boxType;
@end

// Stacks and scroll views
typedef NS_ENUM(NSInteger, NSStackViewGravity) {
  NSStackViewGravityTop = 1, NSStackViewGravityLeading = 1, NSStackViewGravityCenter = 2, NSStackViewGravityBottom = 3,
  NSStackViewGravityTrailing = 3
};
typedef NS_ENUM(NSInteger, NSStackViewDistribution) {
  NSStackViewDistributionGravityAreas = -1, NSStackViewDistributionFill = 0, NSStackViewDistributionFillEqually,
  NSStackViewDistributionFillProportionally, NSStackViewDistributionEqualSpacing, NSStackViewDistributionEqualCentering
};
@interface NSStackView : NSView
+ (instancetype)stackViewWithViews:(NSArray<NSView *> *)views;
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property NSEdgeInsets edgeInsets;
@property NSStackViewDistribution distribution;
@property CGFloat spacing;
@property BOOL detachesHiddenViews;
@property (readonly, copy) NSArray<__kindof NSView *> *arrangedSubviews;
- (void)addArrangedSubview:(NSView *)view;
- (void)insertArrangedSubview:(NSView *)view atIndex:(NSInteger)index;
- (void)removeArrangedSubview:(NSView *)view;
- (void)setCustomSpacing:(CGFloat)spacing afterView:(NSView *)view;
- (void)setHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation;
@end
typedef NS_ENUM(NSUInteger, NSBorderType) { NSNoBorder = 0, NSLineBorder = 1, NSBezelBorder = 2, NSGrooveBorder = 3 };
@interface NSScrollView : NSView
@property (nullable, strong) __kindof NSView *documentView;
@property (strong) NSClipView *contentView;
@property NSBorderType borderType;
@property BOOL hasVerticalScroller, hasHorizontalScroller, autohidesScrollers, drawsBackground;
- (void)reflectScrolledClipView:(NSClipView *)clipView;
@end
@interface NSClipView : NSView
@property BOOL drawsBackground;
- (void)scrollToPoint:(NSPoint)newOrigin;
@end
NS_ASSUME_NONNULL_END
SDK_IN_13_END
