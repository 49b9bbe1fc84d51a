#include "shell/appkit/CleanupWindow.h"

#include "shell/appkit/AlertSheet.h"
#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/CleanupPanels.h"
#include "shell/appkit/CleanupResultsView.h"
#include "shell/appkit/KeyGuard.h"
#include "shell/appkit/Stacks.h"

#include <AppKit/AppKit.h>
#include <utility>

using namespace vantry;

namespace {

constexpr CGFloat iconSide = 48;
constexpr CGFloat topMargin = 20;
constexpr CGFloat bottomOfTop = 12;

NSImageView* makeIconView() {
    NSImageView* view = [[NSImageView alloc] initWithFrame:NSZeroRect];
    view.translatesAutoresizingMaskIntoConstraints = NO;
    view.image = [NSImage imageNamed:NSImageNameApplicationIcon];
    view.imageScaling = NSImageScaleProportionallyUpOrDown;
    view.accessibilityElement = NO;
    [NSLayoutConstraint activateConstraints:@[
        [view.widthAnchor constraintEqualToConstant:iconSide],
        [view.heightAnchor constraintEqualToConstant:iconSide],
    ]];
    return view;
}

void renderButton(NSButton* button, const CleanupButtonContent& content) {
    button.title = nsString(content.title);
    button.hidden = content.hidden;
    button.enabled = content.enabled;
}

NSInteger segmentOf(CleanupWindowMode mode) { return mode == CleanupWindowMode::filesFound ? 0 : 1; }

} // namespace

/// An accessory has no menu bar of its own that would know the shortcut.
@interface OmbrelCleanupPanel : NSWindow
@property(nonatomic, copy) void (^cancelled)(void);
@end

@implementation OmbrelCleanupPanel

- (BOOL)performKeyEquivalent:(NSEvent*)event {
    if (!isCloseShortcut(event))
        return [super performKeyEquivalent:event];
    [self performClose:nil];
    return YES;
}

- (void)keyDown:(NSEvent*)event {
    if (!pressFocusedButton(event, self))
        [super keyDown:event];
}

// Escape, unless a control has a use for it.
- (void)cancelOperation:(id)sender {
    if (_cancelled)
        _cancelled();
}

@end

@interface OmbrelCleanupWindowController : NSObject <NSWindowDelegate>
- (instancetype)initWithActions:(CleanupWindowActions)actions;
- (void)render:(const CleanupWindowContent&)content;
- (void)detach;
@property(nonatomic, readonly) NSWindow* window;
@property(nonatomic, readonly) OmbrelCleanupResultsView* results;
@end

@implementation OmbrelCleanupWindowController {
    CleanupWindowActions _actions;
    CleanupWindowContent _content;

    NSTextField* _titleLabel;
    NSTextField* _subtitleLabel;
    OmbrelSummaryCard* _macStorageCard;
    OmbrelSummaryCard* _foundCard;
    OmbrelSummaryCard* _selectedCard;
    NSSegmentedControl* _modeControl;
    NSButton* _scanButton;
    NSProgressIndicator* _progressIndicator;
    NSButton* _selectSuggestedButton;
    NSButton* _trashButton;
    OmbrelNoticeBox* _noticeBox;
    NSTextField* _statusLabel;
    NSTextField* _selectionLabel;
}

- (instancetype)initWithActions:(CleanupWindowActions)actions {
    if ((self = [super init])) {
        _actions = std::move(actions);
        [self build];
        [self showContent:_content]; // it may be shown before it is rendered
    }
    return self;
}

- (void)build {
    const NSSize size = nsSize(_content.size);
    OmbrelCleanupPanel* panel =
        [[OmbrelCleanupPanel alloc] initWithContentRect:NSMakeRect(0, 0, size.width, size.height)
                                              styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                                        NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
    __weak OmbrelCleanupWindowController* weakSelf = self;
    panel.cancelled = ^{
        [weakSelf cancelPressed];
    };
    _window = panel;
    _window.releasedWhenClosed = NO;
    _window.delegate = self;
    _window.collectionBehavior =
        NSWindowCollectionBehaviorMoveToActiveSpace | NSWindowCollectionBehaviorFullScreenAuxiliary;

    _noticeBox = [[OmbrelNoticeBox alloc] initWithFrame:NSZeroRect];
    NSStackView* top =
        verticalStack(14, @[ [self makeHeader], [self makeCards], [self makeControls], _noticeBox, [self makeStatus] ]);
    _results =
        [[OmbrelCleanupResultsView alloc] initWithActions:std::make_shared<const CleanupRowActions>(_actions.rows)];
    NSView* content = _window.contentView;
    [content addSubview:top];
    [content addSubview:_results];
    [NSLayoutConstraint activateConstraints:@[
        [top.leadingAnchor constraintEqualToAnchor:content.leadingAnchor constant:cleanupMargin],
        [top.trailingAnchor constraintEqualToAnchor:content.trailingAnchor constant:-cleanupMargin],
        [top.topAnchor constraintEqualToAnchor:content.topAnchor constant:topMargin],
        [_results.leadingAnchor constraintEqualToAnchor:content.leadingAnchor],
        [_results.trailingAnchor constraintEqualToAnchor:content.trailingAnchor],
        [_results.topAnchor constraintEqualToAnchor:top.bottomAnchor constant:bottomOfTop],
        [_results.bottomAnchor constraintEqualToAnchor:content.bottomAnchor],
    ]];
}

- (NSButton*)makeButton:(SEL)action {
    NSButton* button = [NSButton buttonWithTitle:@"" target:self action:action];
    setHorizontalHugging(button, NSLayoutPriorityDefaultHigh);
    return button;
}

- (NSView*)makeHeader {
    _titleLabel = makeCleanupLabel(cleanupTitleFont, SystemColor::label);
    _subtitleLabel = makeCleanupLabel(cleanupBodyFont, SystemColor::secondaryLabel);
    return horizontalStack(14, @[ makeIconView(), verticalStack(2, @[ _titleLabel, _subtitleLabel ]) ]);
}

- (NSView*)makeCards {
    _macStorageCard = [OmbrelSummaryCard card];
    _foundCard = [OmbrelSummaryCard card];
    _selectedCard = [OmbrelSummaryCard card];
    NSStackView* cards = horizontalStack(12, @[ _macStorageCard, _foundCard, _selectedCard ]);
    cards.alignment = NSLayoutAttributeTop;
    cards.distribution = NSStackViewDistributionFillEqually;
    [NSLayoutConstraint activateConstraints:@[
        [_foundCard.heightAnchor constraintEqualToAnchor:_macStorageCard.heightAnchor],
        [_selectedCard.heightAnchor constraintEqualToAnchor:_macStorageCard.heightAnchor],
    ]];
    return cards;
}

- (NSView*)makeControls {
    NSMutableArray<NSString*>* labels = [NSMutableArray arrayWithCapacity:_content.modeLabels.size()];
    for (const std::string& label : _content.modeLabels)
        [labels addObject:nsString(label)];
    _modeControl = [NSSegmentedControl segmentedControlWithLabels:labels
                                                     trackingMode:NSSegmentSwitchTrackingSelectOne
                                                           target:self
                                                           action:@selector(modeChanged:)];
    setHorizontalHugging(_modeControl, NSLayoutPriorityDefaultHigh);
    _scanButton = [self makeButton:@selector(scanPressed:)];
    _progressIndicator = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
    _progressIndicator.style = NSProgressIndicatorStyleSpinning;
    _progressIndicator.controlSize = NSControlSizeSmall;
    _progressIndicator.displayedWhenStopped = NO;
    setHorizontalHugging(_progressIndicator, NSLayoutPriorityDefaultHigh);
    _selectSuggestedButton = [self makeButton:@selector(selectSuggestedPressed:)];
    _trashButton = [self makeButton:@selector(trashPressed:)];
    _trashButton.hasDestructiveAction = YES;
    return horizontalStack(
        10,
        @[ _modeControl, _scanButton, _progressIndicator, makeFlexibleSpace(), _selectSuggestedButton, _trashButton ]);
}

- (NSView*)makeStatus {
    _statusLabel = makeCleanupWrappingLabel(cleanupBodyFont, SystemColor::label);
    _selectionLabel = makeCleanupWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
    return verticalStack(3, @[ _statusLabel, _selectionLabel ]);
}

- (void)render:(const CleanupWindowContent&)content {
    if (content == _content)
        return;
    const bool sameResults = content.emptyState == _content.emptyState && content.sections == _content.sections;
    [self showContent:content];
    if (!sameResults)
        [_results setEmptyState:_content.emptyState sections:_content.sections];
}

- (void)showContent:(const CleanupWindowContent&)content {
    _content = content;
    _window.title = nsString(content.windowTitle);
    _window.minSize = nsSize(content.minimumSize);
    _titleLabel.stringValue = nsString(content.titleLabel);
    _subtitleLabel.stringValue = nsString(content.subtitleLabel);
    [_macStorageCard setContent:content.macStorageCard];
    [_foundCard setContent:content.foundCard];
    [_selectedCard setContent:content.selectedCard];
    for (std::size_t index = 0; index < content.modeLabels.size(); ++index)
        [_modeControl setLabel:nsString(content.modeLabels[index]) forSegment:static_cast<NSInteger>(index)];
    [self showMode];
    renderButton(_scanButton, content.scanButton);
    if (content.progressIndicator)
        [_progressIndicator startAnimation:nil];
    else
        [_progressIndicator stopAnimation:nil];
    _progressIndicator.accessibilityLabel = nsString(content.statusLabel);
    renderButton(_selectSuggestedButton, content.selectSuggestedButton);
    renderButton(_trashButton, content.trashButton);
    [_noticeBox setSymbolName:content.noticeSymbolName text:content.notice];
    _statusLabel.stringValue = nsString(content.statusLabel);
    _selectionLabel.stringValue = nsString(content.selectionLabel);
    [_results setSelectionEnabled:content.selectionEnabled];
}

- (void)showMode {
    _modeControl.selectedSegment = segmentOf(_content.modeControl);
}

- (void)scanPressed:(id)sender {
    if (_actions.scan)
        _actions.scan();
}

// The answer to the report is a new content, in which the mode may be as it was.
- (void)modeChanged:(NSSegmentedControl*)sender {
    const NSInteger selected = sender.selectedSegment;
    [self showMode];
    if (_actions.modeChanged)
        _actions.modeChanged(selected == segmentOf(CleanupWindowMode::filesFound) ? CleanupWindowMode::filesFound
                                                                                  : CleanupWindowMode::storageGuide);
}

- (void)selectSuggestedPressed:(id)sender {
    if (_actions.selectSuggested)
        _actions.selectSuggested();
}

- (void)trashPressed:(id)sender {
    if (_actions.trash)
        _actions.trash();
}

- (void)cancelPressed {
    if (_actions.cancel)
        _actions.cancel();
}

- (void)windowWillClose:(NSNotification*)notification {
    closeAlertSheet(_window);
    if (_actions.closed)
        _actions.closed();
}

- (void)detach {
    closeAlertSheet(_window);
    _actions = {};
    _window.delegate = nil;
    [_window close];
}

@end

namespace vantry {

CleanupWindow::CleanupWindow(CleanupWindowActions actions)
    : controller_([[OmbrelCleanupWindowController alloc] initWithActions:std::move(actions)]) {}

CleanupWindow::~CleanupWindow() { [controller_ detach]; }

void CleanupWindow::render(const CleanupWindowContent& content) { [controller_ render:content]; }

void CleanupWindow::showInFront() {
    NSWindow* window = controller_.window;
    if (window.miniaturized)
        [window deminiaturize:nil];
    else if (!window.visible)
        [window center];
    activateApplication();
    [window makeKeyAndOrderFront:nil];
    [window orderFrontRegardless];
    activateApplication();
}

bool CleanupWindow::isVisible() const { return controller_.window.visible || controller_.window.miniaturized; }

void CleanupWindow::scrollResultsToTop() { [controller_.results scrollToTop]; }

void CleanupWindow::ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) {
    closeAlertSheet(controller_.window);
    if (isVisible())
        showAlertSheet(alert, std::move(answered), controller_.window);
    else
        answerLater(std::move(answered), AlertAnswer::last);
}

} // namespace vantry
