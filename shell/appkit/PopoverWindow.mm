#include "shell/appkit/PopoverWindow.h"

#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/BarView.h"
#include "shell/appkit/KeyGuard.h"
#include "shell/appkit/MouseMonitor.h"
#include "shell/appkit/Stacks.h"

#include <AppKit/AppKit.h>
#include <utility>

using namespace vantry;

namespace {

constexpr Font titleFont{15, FontWeight::semibold};
constexpr Font bodyFont{12};
constexpr Font figureFont{12, FontWeight::medium, true};
constexpr Font detailFont{11};
constexpr Font footnoteFont{10};

constexpr CGFloat barViewHeight = 16;
constexpr NSInteger detailLines = 3;
constexpr NSInteger errorLines = 2;

struct MetricRow {
    OmbrelSwatchView* swatch;
    NSTextField* title;
    NSTextField* value;
};

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
        label.toolTip = label.stringValue; // the end of which may not be shown
    label.hidden = content.hidden;
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

    NSTextField* _titleLabel;
    NSTextField* _summaryLabel;
    OmbrelBarView* _barView;
    MetricRow _used;
    MetricRow _available;
    NSTextField* _detailLabel;
    NSTextField* _errorLabel;
    NSTextField* _updateLabel;
    NSButton* _cleanupButton;
    NSButton* _launchAtLoginButton;
    NSButton* _showPercentageButton;
    NSTextField* _barStyleLabel;
    NSPopUpButton* _barStylePopUp;
    NSTextField* _segmentSizingLabel;
    NSPopUpButton* _segmentSizingPopUp;
    NSButton* _refreshButton;
    NSButton* _settingsButton;
    NSButton* _quitButton;
}

- (void)setController:(std::weak_ptr<StoragePopoverViewController>)controller {
    _controller = std::move(controller);
}

- (void)loadView {
    const vantry::Size size = PopoverContent{}.size;
    OmbrelPopoverView* view = [[OmbrelPopoverView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
    view.popover = _popover;
    self.view = view;

    _titleLabel = [self makeLabel:titleFont];
    _summaryLabel = [self makeLabel:bodyFont];
    _barView = [[OmbrelBarView alloc] initWithFrame:NSZeroRect];
    [_barView.heightAnchor constraintEqualToConstant:barViewHeight].active = YES;
    _used = [self makeMetricRow:SolidSwatchView::Kind::used];
    _available = [self makeMetricRow:SolidSwatchView::Kind::available];
    _detailLabel = [self makeLabel:detailFont lines:detailLines];
    _errorLabel = [self makeLabel:detailFont lines:errorLines];
    _updateLabel = [self makeLabel:footnoteFont];
    _cleanupButton = [self makeButton:FontWeight::semibold action:@selector(cleanupPressed:)];
    _launchAtLoginButton = [self makeCheckBox:@selector(loginItemChanged:)];
    _showPercentageButton = [self makeCheckBox:@selector(percentageDisplayChanged:)];
    _barStyleLabel = [self makeLabel:bodyFont];
    _barStylePopUp = [self makePopUp:@selector(barStyleChanged:) title:_barStyleLabel];
    _segmentSizingLabel = [self makeLabel:bodyFont];
    _segmentSizingPopUp = [self makePopUp:@selector(segmentSizingChanged:) title:_segmentSizingLabel];
    _refreshButton = [self makeButton:FontWeight::regular action:@selector(refreshPressed:)];
    _settingsButton = [self makeButton:FontWeight::regular action:@selector(settingsPressed:)];
    _quitButton = [self makeButton:FontWeight::regular action:@selector(quitPressed:)];

    NSBox* separator = [[NSBox alloc] initWithFrame:NSZeroRect];
    separator.boxType = NSBoxSeparator;
    NSStackView* stack = verticalStack(10, @[
        [self makeHeader], _barView, [self makeMetrics], _detailLabel, _errorLabel, _updateLabel, _cleanupButton,
        separator, _launchAtLoginButton, _showPercentageButton,
        [self makeChoiceRow:_barStyleLabel popUp:_barStylePopUp],
        [self makeChoiceRow:_segmentSizingLabel popUp:_segmentSizingPopUp], [self makeCommands]
    ]);
    NSView* root = self.view;
    [root addSubview:stack];
    [NSLayoutConstraint activateConstraints:@[
        [stack.leadingAnchor constraintEqualToAnchor:root.leadingAnchor constant:18],
        [stack.trailingAnchor constraintEqualToAnchor:root.trailingAnchor constant:-18],
        [stack.topAnchor constraintEqualToAnchor:root.topAnchor constant:16],
        [stack.bottomAnchor constraintLessThanOrEqualToAnchor:root.bottomAnchor constant:-14],
    ]];
}

- (NSTextField*)makeLabel:(const Font&)font {
    return makeTextLabel(font);
}

- (NSTextField*)makeLabel:(const Font&)font lines:(NSInteger)lines {
    return makeWrappingLabel(font, lines);
}

- (NSButton*)makeButton:(FontWeight)weight action:(SEL)action {
    NSButton* button = [NSButton buttonWithTitle:@"" target:self action:action];
    button.font = nsFont(Font{12, weight});
    return button;
}

- (NSButton*)makeCheckBox:(SEL)action {
    NSButton* box = [NSButton checkboxWithTitle:@"" target:self action:action];
    box.font = nsFont(bodyFont);
    box.allowsMixedState = NO;
    return box;
}

- (NSPopUpButton*)makePopUp:(SEL)action title:(NSTextField*)title {
    NSPopUpButton* popUp = [[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO];
    popUp.font = nsFont(bodyFont);
    popUp.target = self;
    popUp.action = action;
    popUp.accessibilityTitleUIElement = title;
    return popUp;
}

- (NSView*)makeHeader {
    return verticalStack(2, @[ _titleLabel, _summaryLabel ]);
}

- (MetricRow)makeMetricRow:(SolidSwatchView::Kind)kind {
    return {[[OmbrelSwatchView alloc] initWithKind:kind], [self makeLabel:bodyFont], [self makeLabel:figureFont]};
}

- (NSView*)makeMetrics {
    NSMutableArray<NSView*>* rows = [NSMutableArray arrayWithCapacity:2];
    for (const MetricRow& row : {_used, _available}) {
        setHorizontalHugging(row.title, NSLayoutPriorityDefaultLow); // it takes the free width
        setHorizontalHugging(row.value, NSLayoutPriorityDefaultHigh);
        [rows addObject:horizontalStack(8, @[ row.swatch, row.title, row.value ])];
    }
    return verticalStack(8, rows);
}

- (NSView*)makeChoiceRow:(NSTextField*)title popUp:(NSPopUpButton*)popUp {
    setHorizontalHugging(title, NSLayoutPriorityDefaultHigh);
    setHorizontalHugging(popUp, NSLayoutPriorityDefaultHigh);
    return horizontalStack(8, @[ title, popUp, makeFlexibleSpace() ]);
}

- (NSView*)makeCommands {
    for (NSButton* button in @[ _refreshButton, _settingsButton, _quitButton ])
        setHorizontalHugging(button, NSLayoutPriorityDefaultHigh);
    return horizontalStack(8, @[ _refreshButton, _settingsButton, makeFlexibleSpace(), _quitButton ]);
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
    if (const auto controller = _controller.lock())
        controller->refreshPressed();
}

- (void)settingsPressed:(id)sender {
    if (const auto controller = _controller.lock())
        controller->settingsPressed();
}

- (void)cleanupPressed:(id)sender {
    if (const auto controller = _controller.lock())
        controller->cleanupPressed();
}

- (void)quitPressed:(id)sender {
    if (const auto controller = _controller.lock())
        controller->quitPressed();
}

- (void)loginItemChanged:(NSButton*)sender {
    if (const auto controller = _controller.lock())
        controller->loginItemChanged(sender.state == NSControlStateValueOn);
}

- (void)percentageDisplayChanged:(NSButton*)sender {
    if (const auto controller = _controller.lock())
        controller->percentageDisplayChanged(sender.state == NSControlStateValueOn);
}

- (void)barStyleChanged:(NSPopUpButton*)sender {
    if (const auto controller = _controller.lock())
        controller->barStyleChanged(selectedIndex(sender));
}

- (void)segmentSizingChanged:(NSPopUpButton*)sender {
    if (const auto controller = _controller.lock())
        controller->segmentSizingChanged(selectedIndex(sender));
}

- (void)render:(const PopoverContent&)content {
    [[maybe_unused]] NSView* loaded = self.view; // which makes the controls
    renderLabel(_titleLabel, content.titleLabel);
    renderLabel(_summaryLabel, content.summaryLabel);
    [_barView setView:content.barView];
    [_used.swatch setView:content.usedSwatchView];
    renderLabel(_used.title, content.usedTitleLabel);
    renderLabel(_used.value, content.usedValueLabel);
    [_available.swatch setView:content.availableSwatchView];
    renderLabel(_available.title, content.availableTitleLabel);
    renderLabel(_available.value, content.availableValueLabel);
    renderLabel(_detailLabel, content.detailLabel);
    renderLabel(_errorLabel, content.errorLabel);
    renderLabel(_updateLabel, content.updateLabel);
    renderButton(_cleanupButton, content.cleanupButton);
    renderCheckBox(_launchAtLoginButton, content.launchAtLoginButton);
    renderCheckBox(_showPercentageButton, content.showPercentageButton);
    renderLabel(_barStyleLabel, content.barStyleLabel);
    renderPopUp(_barStylePopUp, content.barStylePopUp);
    renderLabel(_segmentSizingLabel, content.segmentSizingLabel);
    renderPopUp(_segmentSizingPopUp, content.segmentSizingPopUp);
    renderButton(_refreshButton, content.refreshButton);
    renderButton(_settingsButton, content.settingsButton);
    renderButton(_quitButton, content.quitButton);
}

@end

namespace vantry {

PopoverWindow::PopoverWindow() : view_([[OmbrelPopoverViewController alloc] init]), popover_([[NSPopover alloc] init]) {
    popover_.behavior = NSPopoverBehaviorTransient;
    popover_.animates = YES;
    popover_.contentViewController = view_;
    popover_.contentSize = nsSize(PopoverContent{}.size);
    popover_.delegate = view_;
    view_.popover = popover_;
    view_.closed = ^{
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
    NSView* place = button.window ? button : placeAtPointer(); // without a window, showing it there would raise
    monitor_ =
        std::make_unique<MouseMonitor>(NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown,
                                       [this, button](NSEvent* event) { mousePressed(event, button); });
    activateApplication();
    [popover_ showRelativeToRect:place.bounds ofView:place preferredEdge:NSRectEdgeMinY];
    [view_.view.window orderFrontRegardless];
    activateApplication();
    [view_.view.window makeKeyWindow];
}

// A transient popover does not close for other items of the menu bar. This one's button does what the press says.
void PopoverWindow::mousePressed(NSEvent* event, NSView* button) {
    if (pointerIsOver(button)) {
        if (event.type == NSEventTypeLeftMouseDown)
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

void PopoverWindow::close() { [popover_ performClose:nil]; }

bool PopoverWindow::isVisible() const { return popover_.shown; }

} // namespace vantry
