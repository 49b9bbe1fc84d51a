// A window put together from stacks, with controls, a scrolled list, a sheet, and a gradient drawn by hand.
#include <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

@interface GradientView : NSView
@end

@implementation GradientView
- (void)drawRect:(NSRect)dirtyRect {
  CGContextRef context = NSGraphicsContext.currentContext.CGContext;
  const CGFloat components[] = {1, 0, 0, 1, 0, 0, 1, 1}, locations[] = {0, 1};
  CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
  CGGradientRef gradient = CGGradientCreateWithColorComponents(space, components, locations, 2);
  CGColorSpaceRelease(space);
  CGContextSaveGState(context);
  CGContextBeginPath(context);
  CGContextAddEllipseInRect(context, self.bounds);
  CGContextClip(context);
  CGContextSetBlendMode(context, kCGBlendModeScreen);
  CGContextDrawLinearGradient(context, gradient, CGPointMake(0, 0), CGPointMake(NSMaxX(self.bounds), 0), kCGGradientDrawsAfterEndLocation);
  CGContextRestoreGState(context);
  CGGradientRelease(gradient);
  CGColorRef edge = CGColorCreateSRGB(0, 0, 0, 0.5);
  CGContextSetStrokeColorWithColor(context, edge);
  CGColorRelease(edge);
  CGContextSetLineWidth(context, 2);
  CGContextBeginPath(context);
  CGContextAddRect(context, self.bounds);
  CGContextStrokePath(context);
  NSAttributedString *text = [[NSAttributedString alloc] initWithString:@"47%" attributes:@{
    NSFontAttributeName : [NSFont monospacedDigitSystemFontOfSize:10.5 weight:NSFontWeightMedium],
    NSForegroundColorAttributeName : NSColor.labelColor
  }];
  [text drawAtPoint:NSMakePoint(NSMidX(self.bounds) - [text size].width / 2, 0)];
}
@end

@interface ListController : NSObject <NSWindowDelegate>
@end

@implementation ListController {
  NSWindow *_window;
  NSSegmentedControl *_mode;
  NSPopUpButton *_choice;
  NSProgressIndicator *_progress;
  NSScrollView *_scroll;
}
- (instancetype)init {
  if (!(self = [super init])) return nil;
  _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 400, 300) styleMask:NSWindowStyleMaskTitled
                                          backing:NSBackingStoreBuffered defer:NO];
  _window.minSize = NSMakeSize(200, 200);
  _window.delegate = self;
  _mode = [NSSegmentedControl segmentedControlWithLabels:@[ @"One", @"Two" ] trackingMode:NSSegmentSwitchTrackingSelectOne
                                                  target:self action:@selector(modeChanged:)];
  [_mode setLabel:@"First" forSegment:0];
  _choice = [[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO];
  [_choice removeAllItems];
  [_choice addItemsWithTitles:@[ @"A", @"B" ]];
  [_choice selectItemAtIndex:_choice.itemTitles.count > 1 ? 1 : -1];
  _progress = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
  _progress.style = NSProgressIndicatorStyleSpinning;
  _progress.controlSize = NSControlSizeSmall;
  _progress.displayedWhenStopped = NO;
  [_progress startAnimation:nil];
  NSTextField *label = [NSTextField wrappingLabelWithString:@"Text"];
  label.font = [NSFont systemFontOfSize:12 weight:NSFontWeightRegular];
  label.textColor = NSColor.secondaryLabelColor;
  label.maximumNumberOfLines = 2;
  label.alignment = NSTextAlignmentCenter;
  label.lineBreakMode = NSLineBreakByTruncatingMiddle;
  label.cell.truncatesLastVisibleLine = YES;
  _choice.accessibilityTitleUIElement = label;
  NSButton *box = [NSButton checkboxWithTitle:@"Box" target:self action:@selector(modeChanged:)];
  box.allowsMixedState = NO;
  box.hasDestructiveAction = YES;
  NSImageView *icon = [[NSImageView alloc] initWithFrame:NSZeroRect];
  icon.image = [NSImage imageNamed:NSImageNameApplicationIcon];
  icon.imageScaling = NSImageScaleProportionallyUpOrDown;
  icon.contentTintColor = NSColor.systemGreenColor;
  NSBox *line = [[NSBox alloc] initWithFrame:NSZeroRect];
  line.boxType = NSBoxSeparator;
  NSStackView *stack = [NSStackView stackViewWithViews:@[ _mode, _choice, _progress, label, box, icon, line ]];
  stack.orientation = NSUserInterfaceLayoutOrientationVertical;
  stack.alignment = NSLayoutAttributeLeading;
  stack.distribution = NSStackViewDistributionFill;
  stack.edgeInsets = NSEdgeInsetsMake(1, 2, 3, 4);
  [stack setHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationVertical];
  [stack addArrangedSubview:[[GradientView alloc] initWithFrame:NSZeroRect]];
  [label setContentHuggingPriority:NSLayoutPriorityDefaultLow forOrientation:NSLayoutConstraintOrientationHorizontal];
  [label setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow forOrientation:NSLayoutConstraintOrientationHorizontal];
  [label.leadingAnchor constraintGreaterThanOrEqualToAnchor:stack.leadingAnchor constant:4].active = YES;
  [label.trailingAnchor constraintLessThanOrEqualToAnchor:stack.trailingAnchor constant:-4].active = YES;
  _scroll = [[NSScrollView alloc] initWithFrame:NSZeroRect];
  _scroll.borderType = NSNoBorder;
  _scroll.hasVerticalScroller = _scroll.autohidesScrollers = YES;
  _scroll.documentView = stack;
  [_scroll.contentView scrollToPoint:NSZeroPoint];
  [_scroll reflectScrolledClipView:_scroll.contentView];
  [_window.contentView addSubview:_scroll];
  return self;
}
- (void)modeChanged:(NSSegmentedControl *)sender {
  NSAlert *alert = [[NSAlert alloc] init];
  alert.window.preventsApplicationTerminationWhenModal = NO;
  if (sender.selectedSegment == 1 && _choice.indexOfSelectedItem >= 0)
    [alert beginSheetModalForWindow:_window completionHandler:nil];
}
- (void)windowWillClose:(NSNotification *)notification {
  if (NSWindow *sheet = _window.attachedSheet) [_window endSheet:sheet returnCode:NSModalResponseCancel];
  if (_window.miniaturized) [_window deminiaturize:nil];
  NSResponder *focused = _window.firstResponder;
  if ([focused isKindOfClass:NSView.class] && [static_cast<NSView *>(focused) isDescendantOf:_scroll]) [_window performClose:nil];
}
@end

bool hasSession() {
  CFDictionaryRef session = CGSessionCopyCurrentDictionary();
  if (session) CFRelease(session);
  return session != nullptr;
}
