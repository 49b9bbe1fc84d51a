// Labels, buttons and what else is clicked or shown. Sizes of controls are guesses: close to those of macOS 13.

#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/runtime/Runtime.h"

#include <algorithm>
#include <cstring>

using namespace vantry;
using namespace vantry::apple;
using Alignment = TextStyle::Alignment;
using Elision = TextStyle::Elision;

namespace {

constexpr double checkBoxSide = 14;
constexpr double checkBoxWidth = 20; ///< with the gap in front of the title
constexpr double checkBoxEnd = 2;
constexpr double buttonHeight = 21;
constexpr double buttonPadding = 24;
constexpr double popUpPadding = 40;
constexpr double segmentPadding = 20;
constexpr double cornerRadius = 5;
constexpr Rgba faint{0.6, 0.6, 0.6, 0.15};
constexpr Rgba edge{0.5, 0.5, 0.5, 0.4};
constexpr Rgba accent{0, 0.48, 1, 1};

double widthOf(NSString* text, NSFont* font) { return textSize(text.UTF8String, fontOf(font)).width; }

void drawBox(CGContextRef context, const Rect& rect, const Rgba& color) {
    fill(context, RoundedRect{rect.inset(0.5, 0.5), cornerRadius}, color);
    stroke(context, RoundedRect{rect.inset(0.5, 0.5), cornerRadius}, edge, 1);
}

} // namespace

std::string vantry::apple::nameOf(NSView* view) {
    if (!view)
        return "nothing";
    std::string name = objc::className((__bridge void*)[view class]);
    NSString* text = [view isKindOfClass:[NSButton class]]      ? static_cast<NSButton*>(view).title
                     : [view isKindOfClass:[NSTextField class]] ? static_cast<NSTextField*>(view).stringValue
                                                                : nil;
    constexpr std::size_t enough = 30;
    return text ? name + " “" + std::string(text.UTF8String).substr(0, enough) + "”" : name;
}

@implementation NSCell
@synthesize truncatesLastVisibleLine;
@end

@implementation NSControl
@synthesize target, action, enabled, cell, font, alignment, lineBreakMode, controlSize, allowsExpansionToolTips;
@synthesize stringValue = _stringValue;

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        self.enabled = YES;
        self.font = [NSFont systemFontOfSize:13 weight:NSFontWeightRegular];
        self.cell = [[NSCell alloc] init];
        self.alignment = NSTextAlignmentNatural;
        _stringValue = @"";
        _sendsOn = NSEventMaskLeftMouseUp;
    }
    return self;
}

// "Invalid parameter not satisfying: aString != nil."
- (void)setStringValue:(NSString*)text {
    if (!text)
        objc::die("nil as the text of a control");
    _stringValue = text;
}

- (NSInteger)sendActionOn:(NSEventMask)mask {
    const NSEventMask before = _sendsOn;
    _sendsOn = mask;
    return static_cast<NSInteger>(before);
}

- (BOOL)sendAction:(SEL)selector to:(id)receiver {
    if (!selector || !receiver)
        return NO;
    sendMessage(receiver, selector, self);
    return YES;
}

- (void)performClick:(id)sender {
    if (self.enabled)
        [self sendAction:self.action to:self.target];
}

ANSWERS(Rgba, textColorOfState, rgbaOf(self.enabled ? [NSColor labelColor] : [NSColor disabledControlTextColor]))

@end

@implementation NSTextField
@synthesize textColor, selectable, maximumNumberOfLines;

+ (instancetype)labelWithString:(NSString*)text {
    NSTextField* label = [[self alloc] initWithFrame:NSZeroRect];
    label.stringValue = text;
    label.lineBreakMode = NSLineBreakByClipping;
    label.maximumNumberOfLines = 1;
    label.textColor = [NSColor labelColor];
    label->_hugging = {251, 750};
    return label;
}

+ (instancetype)wrappingLabelWithString:(NSString*)text {
    NSTextField* label = [self labelWithString:text];
    label.lineBreakMode = NSLineBreakByWordWrapping;
    label.maximumNumberOfLines = 0;
    label.selectable = YES;
    label->_hugging[0] = 250;
    return label;
}

ANSWERS(BOOL, wraps, self.lineBreakMode == NSLineBreakByWordWrapping)

// guess: a text begins and ends where constraints see the edges of its label, which is what alignment rectangles are
// for
- (NSSize)contentSizeAtWidth:(CGFloat)width {
    const bool wraps = [self wraps] && width > 0;
    const std::string text = self.stringValue.UTF8String;
    vantry::Size size = textSize(text, fontOf(self.font));
    if (wraps)
        size.height = textSize(text, fontOf(self.font), width, static_cast<int>(self.maximumNumberOfLines)).height;
    return NSMakeSize(size.width, size.height);
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
    const NSTextAlignment side = self.alignment;
    const NSLineBreakMode mode = self.lineBreakMode;
    drawText(context, self.stringValue.UTF8String,
             {fontOf(self.font), rgbaOf(self.textColor),
              side == NSTextAlignmentCenter  ? Alignment::centre
              : side == NSTextAlignmentRight ? Alignment::right
                                             : Alignment::left,
              mode == NSLineBreakByTruncatingMiddle ? Elision::middle
              : mode == NSLineBreakByTruncatingTail ? Elision::end
                                                    : Elision::none,
              static_cast<bool>([self wraps])},
             Rect{0, 0, size.width, size.height});
}

@end

@implementation NSButton
@synthesize title = _title, image, imagePosition, bordered, state, keyEquivalent, contentTintColor;
@synthesize allowsMixedState, hasDestructiveAction;

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        self.bordered = YES;
        self.keyEquivalent = @"";
        _title = @"Button";
        _hugging[1] = 750;
    }
    return self;
}

+ (instancetype)buttonWithTitle:(NSString*)title target:(id)target action:(SEL)action {
    NSButton* button = [[self alloc] initWithFrame:NSZeroRect];
    button.title = title;
    button.target = target;
    button.action = action;
    return button;
}

+ (instancetype)checkboxWithTitle:(NSString*)title target:(id)target action:(SEL)action {
    NSButton* button = [self buttonWithTitle:title target:target action:action];
    button->_isCheckBox = YES;
    return button;
}

- (void)setTitle:(NSString*)title {
    if (!title)
        objc::die("nil as the title of a button");
    _title = title;
}

// A check box changes its state before it reports.
- (void)performClick:(id)sender {
    if (self.enabled && _isCheckBox)
        self.state = self.state == NSControlStateValueOn ? NSControlStateValueOff : NSControlStateValueOn;
    [super performClick:sender];
}

// "Pressing the key simulates a click."
- (BOOL)performKeyEquivalent:(NSEvent*)event {
    if (self.hidden || !self.enabled || self.keyEquivalent.length == 0 ||
        ![self.keyEquivalent isEqualToString:event->_characters])
        return NO;
    [self performClick:nil];
    return YES;
}

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    const double text = widthOf(self.title, self.font);
    if (_isCheckBox)
        return NSMakeSize(text + (text > 0 ? checkBoxWidth + checkBoxEnd : checkBoxSide + 2), 16);
    if (!self.bordered)
        return self.image ? self.image.size : NSMakeSize(text, 16);
    return NSMakeSize(text + buttonPadding, buttonHeight);
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
    const Rect rect{0, 0, size.width, size.height};
    TextStyle style{fontOf(self.font), [self textColorOfState], Alignment::centre};
    if (_isCheckBox) {
        drawBox(context, {1, (size.height - checkBoxSide) / 2, checkBoxSide, checkBoxSide},
                self.state == NSControlStateValueOn ? accent : faint);
        style.alignment = Alignment::left;
        drawText(context, self.title.UTF8String, style, {checkBoxWidth, 0, size.width - checkBoxWidth, size.height});
        return;
    }
    if (self.bordered)
        drawBox(context, rect, faint);
    else if (self.image)
        stroke(context, Ellipse{rect.inset(size.width / 2 - cornerRadius, size.height / 2 - cornerRadius)}, edge, 1.5);
    drawText(context, self.title.UTF8String, style, rect);
}

@end

@implementation NSPopUpButton {
    NSArray<NSString*>* _titles;
    NSInteger _selected;
}

- (instancetype)initWithFrame:(NSRect)frame pullsDown:(BOOL)pullsDown {
    if ((self = [super initWithFrame:frame]))
        [self removeAllItems];
    return self;
}

// The first item is selected when there was none.
- (void)addItemsWithTitles:(NSArray<NSString*>*)titles {
    if (_titles.count > 0)
        objc::die("items are added to a pop-up button that has some");
    _titles = titles;
    _selected = titles.count > 0 ? 0 : -1;
}

- (void)removeAllItems {
    _titles = @[];
    _selected = -1;
}

ANSWERS(NSArray<NSString*>*, itemTitles, _titles)

// "-1 deselects all items"; an index beyond the last raises an exception.
- (void)selectItemAtIndex:(NSInteger)index {
    if (index < -1 || index >= static_cast<NSInteger>(_titles.count))
        objc::die("an item of a pop-up button that is not there");
    _selected = index;
}

ANSWERS(NSInteger, indexOfSelectedItem, _selected)
ANSWERS(NSString*, title, _selected < 0 ? @"" : _titles[static_cast<NSUInteger>(_selected)])

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    double widest = 0;
    for (NSString* each in _titles)
        widest = std::max(widest, widthOf(each, self.font));
    return NSMakeSize(widest + popUpPadding, buttonHeight);
}

@end

@implementation NSSegmentedControl {
    std::vector<NSString*> _labels;
}
@synthesize selectedSegment;

+ (instancetype)segmentedControlWithLabels:(NSArray<NSString*>*)labels
                              trackingMode:(NSSegmentSwitchTracking)mode
                                    target:(id)target
                                    action:(SEL)action {
    NSSegmentedControl* control = [[self alloc] initWithFrame:NSZeroRect];
    for (NSString* label in labels)
        control->_labels.push_back(label);
    control.target = target;
    control.action = action;
    control.selectedSegment = -1;
    return control;
}

- (void)setLabel:(NSString*)label forSegment:(NSInteger)segment {
    if (segment < 0 || segment >= static_cast<NSInteger>(_labels.size()))
        objc::die("a segment that is not there");
    _labels[static_cast<std::size_t>(segment)] = label;
}

ANSWERS(NSInteger, segmentCount, static_cast<NSInteger>(_labels.size()))

- (NSString*)labelForSegment:(NSInteger)segment {
    return _labels.at(static_cast<std::size_t>(segment));
}

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    double sum = 0;
    for (NSString* label : _labels)
        sum += widthOf(label, self.font) + segmentPadding;
    return NSMakeSize(sum, buttonHeight);
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
    double x = 0;
    for (std::size_t index = 0; index < _labels.size(); ++index) {
        const Rect rect{x, 0, widthOf(_labels[index], self.font) + segmentPadding, size.height};
        drawBox(context, rect, static_cast<NSInteger>(index) == self.selectedSegment ? accent : faint);
        drawText(context, _labels[index].UTF8String, {fontOf(self.font), [self textColorOfState], Alignment::centre},
                 rect);
        x = rect.maxX();
    }
}

@end

@implementation NSImageView
@synthesize image, contentTintColor, imageScaling;

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    return self.image && self.image.size.width > 0 ? self.image.size : NSMakeSize(-1, -1);
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
    const double side = self.image.size.width > 0 ? self.image.size.width : size.width;
    if (self.image)
        stroke(context, RoundedRect{{(size.width - side) / 2, (size.height - side) / 2, side, side}, cornerRadius},
               self.contentTintColor ? rgbaOf(self.contentTintColor) : edge, 1.5);
}

@end

@implementation NSProgressIndicator {
    BOOL _runs;
}
@synthesize style, controlSize, displayedWhenStopped;

- (void)startAnimation:(id)sender {
    _runs = YES;
}

- (void)stopAnimation:(id)sender {
    _runs = NO;
}

ANSWERS(BOOL, isRunning, _runs)

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    return NSMakeSize(16, 16);
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
    if (_runs)
        stroke(context, Ellipse{{2, size.height / 2 - 6, 12, 12}}, edge, 2);
}

@end

@implementation NSBox
@synthesize boxType;

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    return NSMakeSize(-1, self.boxType == NSBoxSeparator ? 1 : -1);
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
    fill(context, Rect{0, 0, size.width, size.height}, rgbaOf([NSColor separatorColor]));
}

@end
