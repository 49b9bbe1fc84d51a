#include "shell/appkit/PopoverWindow.h"

#include "app/CallIfAlive.h"
#include "app/Look.h"
#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/BarView.h"
#include "shell/appkit/KeyGuard.h"
#include "shell/appkit/MouseMonitor.h"
#include "shell/appkit/Stacks.h"

#include <AppKit/AppKit.h>
#include <functional>
#include <utility>
#include <vector>

using namespace vantry;

namespace {

void renderPopUp(NSPopUpButton* popUp, const PopUpContent& content) {
    NSMutableArray<NSString*>* titles = [NSMutableArray arrayWithCapacity:content.items.size()];
    for (const std::string& item : content.items)
        [titles addObject:nsString(item)];
    if (![popUp.itemTitles isEqualToArray:titles]) {
        [popUp removeAllItems];
        [popUp addItemsWithTitles:titles];
    }
    [popUp selectItemAtIndex:content.selectedIndex ? static_cast<NSInteger>(*content.selectedIndex) : -1];
    popUp.enabled = content.enabled;
    popUp.toolTip = nsString(content.tooltip);
}

void renderCheckBox(NSButton* box, const CheckBoxContent& content) {
    box.title = nsString(content.title);
    box.toolTip = nsString(content.tooltip);
    box.state = content.checked ? NSControlStateValueOn : NSControlStateValueOff;
}

void renderButton(NSButton* button, const ButtonContent& content) {
    button.title = nsString(content.title);
    button.toolTip = nsString(content.tooltip);
}

void renderLabel(NSTextField* label, const LabelContent& content) {
    label.stringValue = nsString(content.text);
    if (label.maximumNumberOfLines > 1)
        label.toolTip = label.stringValue; // the label may cut it off, and such labels have no expansion tooltip
    label.textColor = nsColor(content.color);
}

std::optional<std::size_t> selectedIndex(NSPopUpButton* popUp) {
    const NSInteger selected = popUp.indexOfSelectedItem;
    return selected < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(selected));
}

} // namespace

/// ⌘W closes the popover.
@interface OmbrelPopoverView : NSView
@property(nonatomic, weak) NSPopover* popover;
@end

@implementation OmbrelPopoverView

- (BOOL)performKeyEquivalent:(NSEvent*)event {
    if (!isCloseShortcut(event))
        return [super performKeyEquivalent:event];
    [_popover performClose:nil];
    return YES;
}

@end

@interface OmbrelPopoverViewController : NSViewController <NSPopoverDelegate>
@property(nonatomic, weak) NSPopover* popover;
@property(nonatomic, copy) void (^closed)(void);
- (void)setController:(std::weak_ptr<StoragePopoverViewController>)controller;
- (void)render:(const PopoverContent&)content;
@end

@implementation OmbrelPopoverViewController {
    std::weak_ptr<StoragePopoverViewController> _controller;
    NSStackView* _stack;
    NSTextField* _detailLabel;
    NSTextField* _errorLabel;
    std::vector<std::function<void(const PopoverContent&)>> _renderers; ///< one for each control
}

- (void)setController:(std::weak_ptr<StoragePopoverViewController>)controller {
    _controller = std::move(controller);
}

- (void)loadView {
    using Content = PopoverContent;
    const vantry::Size size = Content{}.size;
    OmbrelPopoverView* root = [[OmbrelPopoverView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
    root.popover = _popover;
    self.view = root;

    NSView* header = verticalStack(popoverHeaderGap, @[
        [self makeLabel:&Content::titleLabel font:popoverTitleFont], [self makeLabel:&Content::summaryLabel
                                                                                font:popoverBodyFont]
    ]);
    OmbrelBarView* bar = [[OmbrelBarView alloc] initWithFrame:NSZeroRect];
    [bar.heightAnchor constraintEqualToConstant:popoverBarHeight].active = YES;
    _renderers.emplace_back([bar](const Content& content) { [bar setView:content.barView]; });
    NSView* metrics = verticalStack(popoverRowSpacing, @[
        [self makeMetricRow:&Content::usedSwatchView
                      title:&Content::usedTitleLabel
                      value:&Content::usedValueLabel
                    tooltip:&Content::usedTooltip],
        [self makeMetricRow:&Content::availableSwatchView
                      title:&Content::availableTitleLabel
                      value:&Content::availableValueLabel
                    tooltip:&Content::availableTooltip]
    ]);
    _detailLabel = [self makeWrappingLabel:&Content::detailLabel lines:popoverDetailLines];
    _errorLabel = [self makeWrappingLabel:&Content::errorLabel lines:popoverErrorLines];
    NSBox* separator = [[NSBox alloc] initWithFrame:NSZeroRect];
    separator.boxType = NSBoxSeparator;
    NSView* commands = horizontalStack(popoverRowSpacing, @[
        [self makeCommand:&Content::refreshButton action:@selector(refreshPressed:)],
        [self makeCommand:&Content::settingsButton action:@selector(settingsPressed:)], makeFlexibleSpace(),
        [self makeCommand:&Content::quitButton action:@selector(quitPressed:)]
    ]);
    _stack = verticalStack(popoverSpacing, @[
        header, bar, metrics, _detailLabel, _errorLabel,
        [self makeLabel:&Content::updateLabel font:popoverFootnoteFont],
        [self makeButton:&Content::cleanupButton weight:FontWeight::semibold action:@selector(cleanupPressed:)],
        separator, [self makeCheckBox:&Content::launchAtLoginButton action:@selector(loginItemChanged:)],
        [self makeCheckBox:&Content::showPercentageButton action:@selector(percentageDisplayChanged:)],
        [self makeChoiceRow:&Content::barStyleLabel popUp:&Content::barStylePopUp action:@selector(barStyleChanged:)],
        [self makeChoiceRow:&Content::segmentSizingLabel
                      popUp:&Content::segmentSizingPopUp
                     action:@selector(segmentSizingChanged:)],
        commands
    ]);
    [root addSubview:_stack];
    [NSLayoutConstraint activateConstraints:@[
        [_stack.leadingAnchor constraintEqualToAnchor:root.leadingAnchor constant:popoverSideMargin],
        [_stack.trailingAnchor constraintEqualToAnchor:root.trailingAnchor constant:-popoverSideMargin],
        [_stack.topAnchor constraintEqualToAnchor:root.topAnchor constant:popoverTopMargin],
        [_stack.bottomAnchor constraintLessThanOrEqualToAnchor:root.bottomAnchor constant:-popoverBottomMargin],
    ]];
}

// Each control is made together with the field that it shows.

- (NSTextField*)show:(LabelContent PopoverContent::*)field in:(NSTextField*)label {
    _renderers.emplace_back([=](const PopoverContent& content) { renderLabel(label, content.*field); });
    return label;
}

- (NSTextField*)makeLabel:(LabelContent PopoverContent::*)field font:(const Font&)font {
    return [self show:field in:makeTextLabel(font)];
}

- (NSTextField*)makeWrappingLabel:(LabelContent PopoverContent::*)field lines:(NSInteger)lines {
    return [self show:field in:makeWrappingLabel(popoverDetailFont, SystemColor::label, lines)];
}

- (NSButton*)makeButton:(ButtonContent PopoverContent::*)field weight:(FontWeight)weight action:(SEL)action {
    NSButton* button = [NSButton buttonWithTitle:@"" target:self action:action];
    button.font = nsFont(Font{popoverBodyFont.size, weight});
    _renderers.emplace_back([=](const PopoverContent& content) { renderButton(button, content.*field); });
    return button;
}

- (NSButton*)makeCommand:(ButtonContent PopoverContent::*)field action:(SEL)action {
    NSButton* button = [self makeButton:field weight:FontWeight::regular action:action];
    setHorizontalHugging(button, NSLayoutPriorityDefaultHigh);
    return button;
}

- (NSButton*)makeCheckBox:(CheckBoxContent PopoverContent::*)field action:(SEL)action {
    NSButton* box = [NSButton checkboxWithTitle:@"" target:self action:action];
    box.font = nsFont(popoverBodyFont);
    box.allowsMixedState = NO;
    _renderers.emplace_back([=](const PopoverContent& content) { renderCheckBox(box, content.*field); });
    return box;
}

- (NSView*)makeMetricRow:(SolidSwatchView PopoverContent::*)swatch
                   title:(LabelContent PopoverContent::*)title
                   value:(LabelContent PopoverContent::*)value
                 tooltip:(std::string PopoverContent::*)tooltip {
    OmbrelSwatchView* swatchView = [[OmbrelSwatchView alloc] initWithKind:(PopoverContent{}.*swatch).kind];
    NSTextField* titleLabel = [self makeLabel:title font:popoverBodyFont];
    NSTextField* valueLabel = [self makeLabel:value font:popoverFigureFont];
    setHorizontalHugging(titleLabel, NSLayoutPriorityDefaultLow); // takes the free width
    setHorizontalHugging(valueLabel, NSLayoutPriorityDefaultHigh);
    _renderers.emplace_back([=](const PopoverContent& content) {
        [swatchView setView:content.*swatch];
        for (NSTextField* label : {titleLabel, valueLabel})
            label.toolTip = (content.*tooltip).empty() ? nil : nsString(content.*tooltip);
    });
    return horizontalStack(popoverRowSpacing, @[ swatchView, titleLabel, valueLabel ]);
}

- (NSView*)makeChoiceRow:(LabelContent PopoverContent::*)title
                   popUp:(PopUpContent PopoverContent::*)field
                  action:(SEL)action {
    NSTextField* titleLabel = [self makeLabel:title font:popoverBodyFont];
    NSPopUpButton* popUp = [[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO];
    popUp.font = nsFont(popoverBodyFont);
    popUp.target = self;
    popUp.action = action;
    popUp.accessibilityTitleUIElement = titleLabel;
    setHorizontalHugging(titleLabel, NSLayoutPriorityDefaultHigh);
    setHorizontalHugging(popUp, NSLayoutPriorityDefaultHigh);
    _renderers.emplace_back([=](const PopoverContent& content) { renderPopUp(popUp, content.*field); });
    return horizontalStack(popoverRowSpacing, @[ titleLabel, popUp, makeFlexibleSpace() ]);
}

- (void)popoverDidClose:(NSNotification*)notification {
    if (_closed)
        _closed();
}

- (void)cancelOperation:(id)sender {
    [_popover performClose:sender];
}

- (void)keyDown:(NSEvent*)event {
    if (!pressFocusedButton(event, self.view.window))
        [super keyDown:event];
}

- (void)refreshPressed:(id)sender {
    callIfAlive(_controller, &StoragePopoverViewController::refreshPressed);
}

- (void)settingsPressed:(id)sender {
    callIfAlive(_controller, &StoragePopoverViewController::settingsPressed);
}

- (void)cleanupPressed:(id)sender {
    callIfAlive(_controller, &StoragePopoverViewController::cleanupPressed);
}

- (void)quitPressed:(id)sender {
    callIfAlive(_controller, &StoragePopoverViewController::quitPressed);
}

- (void)loginItemChanged:(NSButton*)sender {
    callIfAlive(_controller, &StoragePopoverViewController::loginItemChanged, sender.state == NSControlStateValueOn);
}

- (void)percentageDisplayChanged:(NSButton*)sender {
    callIfAlive(_controller, &StoragePopoverViewController::percentageDisplayChanged,
                sender.state == NSControlStateValueOn);
}

- (void)barStyleChanged:(NSPopUpButton*)sender {
    callIfAlive(_controller, &StoragePopoverViewController::barStyleChanged, selectedIndex(sender));
}

- (void)segmentSizingChanged:(NSPopUpButton*)sender {
    callIfAlive(_controller, &StoragePopoverViewController::segmentSizingChanged, selectedIndex(sender));
}

- (void)render:(const PopoverContent&)content {
    [[maybe_unused]] NSView* loaded = self.view; // creates the controls
    for (const auto& renderer : _renderers)
        renderer(content);
    setFullWidth(_stack, _errorLabel, _detailLabel, !content.errorLabel.hidden);
}

@end

namespace vantry {

PopoverWindow::PopoverWindow() : view_([[OmbrelPopoverViewController alloc] init]), popover_([[NSPopover alloc] init]) {
    popover_.behavior = NSPopoverBehaviorTransient;
    popover_.animates = YES;
    view_.popover = popover_; // set first, because the next line may load the view
    popover_.contentViewController = view_;
    popover_.contentSize = nsSize(PopoverContent{}.size);
    popover_.delegate = view_;
    view_.closed = ^{
        if (popover_.shown) // reopened while it was fading out
            return;
        monitor_.reset();
        [place_ orderOut:nil];
        place_ = nil;
    };
}

PopoverWindow::~PopoverWindow() {
    view_.closed = nil;
    popover_.delegate = nil;
    [popover_ close];
    [place_ orderOut:nil];
}

void PopoverWindow::setController(std::weak_ptr<StoragePopoverViewController> controller) {
    [view_ setController:std::move(controller)];
}

void PopoverWindow::render(const PopoverContent& content) {
    [view_ render:content];
    const NSSize size = nsSize(content.size);
    if (!CGSizeEqualToSize(popover_.contentSize, size))
        popover_.contentSize = size;
}

void PopoverWindow::openAt(NSView* button) {
    // Showing a popover on a view without a window throws. A button that was pushed out of the menu bar is on no
    // screen.
    NSView* place = button.window.screen ? button : placeAtPointer();
    monitor_ =
        std::make_unique<MouseMonitor>(NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown,
                                       [this, button](NSEvent* event) { mousePressed(event, button); });
    activateApplication();
    [popover_ showRelativeToRect:place.bounds ofView:place preferredEdge:NSRectEdgeMinY];
    [view_.view.window orderFrontRegardless];
    activateApplication();
    [view_.view.window makeKeyWindow];
}

// A transient popover stays open on clicks on other menu bar items. Clicks on our own button are handled when they are
// released.
void PopoverWindow::mousePressed(NSEvent* event, NSView* button) {
    if (pointerIsOver(button)) {
        if (event.type == NSEventTypeLeftMouseDown && isVisible()) // not fading out
            press_ = event.eventNumber;
    } else if (!event.window) {
        close();
    }
}

// A press and its release have the same number (kCGMouseEventNumber).
bool PopoverWindow::wasShownAtPress(NSEvent* release) const {
    return press_ && release.type == NSEventTypeLeftMouseUp && release.eventNumber == *press_;
}

NSView* PopoverWindow::placeAtPointer() {
    const NSPoint pointer = NSEvent.mouseLocation;
    NSScreen* screen = NSScreen.mainScreen;
    for (NSScreen* candidate in NSScreen.screens)
        if (NSPointInRect(pointer, candidate.frame))
            screen = candidate;
    const NSRect room = screen.visibleFrame;
    [place_ orderOut:nil];
    place_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(pointer.x, NSMaxY(room) - 1, 1, 1)
                                         styleMask:NSWindowStyleMaskBorderless
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
    place_.releasedWhenClosed = NO;
    place_.opaque = NO;
    place_.backgroundColor = [NSColor clearColor];
    place_.ignoresMouseEvents = YES;
    place_.level = NSStatusWindowLevel;
    [place_ orderFrontRegardless];
    return place_.contentView;
}

} // namespace vantry
