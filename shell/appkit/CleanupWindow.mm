#include "shell/appkit/CleanupWindow.h"

#include "shell/appkit/AlertSheet.h"
#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/CleanupPanels.h"
#include "shell/appkit/CleanupResultsView.h"
#include "shell/appkit/KeyGuard.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

#include <AppKit/AppKit.h>
#include <functional>
#include <utility>
#include <vector>

using namespace vantry;

namespace {

constexpr CGFloat bottomOfTop = 12;

NSImageView* makeIconView() {
    NSImageView* view = makePictureView(cleanupIconSide, NSImageScaleProportionallyUpOrDown);
    view.image = [NSImage imageNamed:NSImageNameApplicationIcon];
    return view;
}

NSInteger segmentOf(CleanupWindowMode mode) { return mode == CleanupWindowMode::filesFound ? 0 : 1; }

} // namespace

/// Handles ⌘W itself, because an accessory has no menu bar.
@interface OmbrelCleanupPanel : NSWindow
@property(nonatomic, copy) void (^cancelled)(void);
@property(nonatomic, weak) OmbrelCleanupResultsView* results;
@end

@implementation OmbrelCleanupPanel

- (BOOL)performKeyEquivalent:(NSEvent*)event {
    if (!isCloseShortcut(event))
        return [super performKeyEquivalent:event];
    [self performClose:nil];
    return YES;
}

- (void)keyDown:(NSEvent*)event {
    if (const int pages = pagesToScroll(event))
        [_results scrollByPages:pages];
    else if (!pressFocusedButton(event, self))
        [super keyDown:event];
}

// Escape, unless a control handles it.
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

    std::vector<std::function<void(const CleanupWindowContent&)>> _renderers; ///< one for each control
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

    OmbrelNoticeBox* notice = [[OmbrelNoticeBox alloc] initWithFrame:NSZeroRect];
    _renderers.emplace_back([notice](const CleanupWindowContent& shown) {
        [notice setSymbolName:shown.noticeSymbolName text:shown.notice];
    });
    NSStackView* top = verticalStack(
        cleanupSpacing, @[ [self makeHeader], [self makeCards], [self makeControls], notice, [self makeStatus] ]);
    _results =
        [[OmbrelCleanupResultsView alloc] initWithActions:std::make_shared<const CleanupRowActions>(_actions.rows)];
    panel.results = _results;
    NSView* content = _window.contentView;
    [content addSubview:top];
    [content addSubview:_results];
    [NSLayoutConstraint activateConstraints:@[
        [top.leadingAnchor constraintEqualToAnchor:content.leadingAnchor constant:cleanupMargin],
        [top.trailingAnchor constraintEqualToAnchor:content.trailingAnchor constant:-cleanupMargin],
        [top.topAnchor constraintEqualToAnchor:content.topAnchor constant:cleanupTopMargin],
        [_results.leadingAnchor constraintEqualToAnchor:content.leadingAnchor],
        [_results.trailingAnchor constraintEqualToAnchor:content.trailingAnchor],
        [_results.topAnchor constraintEqualToAnchor:top.bottomAnchor constant:bottomOfTop],
        [_results.bottomAnchor constraintEqualToAnchor:content.bottomAnchor],
    ]];
}

- (NSTextField*)show:(std::string CleanupWindowContent::*)field in:(NSTextField*)label {
    _renderers.emplace_back([=](const CleanupWindowContent& content) { label.stringValue = nsString(content.*field); });
    return label;
}

- (NSButton*)makeButton:(CleanupButtonContent CleanupWindowContent::*)field action:(SEL)action {
    NSButton* button = [NSButton buttonWithTitle:@"" target:self action:action];
    setHorizontalHugging(button, NSLayoutPriorityDefaultHigh);
    _renderers.emplace_back([=](const CleanupWindowContent& content) {
        button.title = nsString((content.*field).title);
        button.hidden = (content.*field).hidden;
        button.enabled = (content.*field).enabled;
    });
    return button;
}

- (NSView*)makeHeader {
    NSTextField* title = [self show:&CleanupWindowContent::titleLabel in:makeTextLabel(cleanupTitleFont)];
    NSTextField* subtitle = [self show:&CleanupWindowContent::subtitleLabel
                                    in:makeTextLabel(cleanupBodyFont, SystemColor::secondaryLabel)];
    return horizontalStack(cleanupSpacing, @[ makeIconView(), verticalStack(cleanupHeaderGap, @[ title, subtitle ]) ]);
}

- (NSView*)makeCards {
    NSMutableArray<NSView*>* cards = [NSMutableArray arrayWithCapacity:3];
    for (const auto field : {&CleanupWindowContent::macStorageCard, &CleanupWindowContent::foundCard,
                             &CleanupWindowContent::selectedCard}) {
        OmbrelSummaryCard* card = [OmbrelSummaryCard card];
        _renderers.emplace_back([=](const CleanupWindowContent& content) { [card setContent:content.*field]; });
        [cards addObject:card];
    }
    NSStackView* row = horizontalStack(cleanupCardGap, cards);
    row.alignment = NSLayoutAttributeTop;
    row.distribution = NSStackViewDistributionFillEqually;
    [NSLayoutConstraint activateConstraints:@[
        [cards[1].heightAnchor constraintEqualToAnchor:cards[0].heightAnchor],
        [cards[2].heightAnchor constraintEqualToAnchor:cards[0].heightAnchor],
    ]];
    return row;
}

- (NSView*)makeModeControl {
    NSMutableArray<NSString*>* labels = [NSMutableArray arrayWithCapacity:_content.modeLabels.size()];
    for (const std::string& label : _content.modeLabels)
        [labels addObject:nsString(label)];
    NSSegmentedControl* control = [NSSegmentedControl segmentedControlWithLabels:labels
                                                                    trackingMode:NSSegmentSwitchTrackingSelectOne
                                                                          target:self
                                                                          action:@selector(modeChanged:)];
    setHorizontalHugging(control, NSLayoutPriorityDefaultHigh);
    _renderers.emplace_back([control](const CleanupWindowContent& content) {
        for (std::size_t index = 0; index < content.modeLabels.size(); ++index)
            [control setLabel:nsString(content.modeLabels[index]) forSegment:static_cast<NSInteger>(index)];
        control.selectedSegment = segmentOf(content.modeControl);
    });
    return control;
}

- (NSView*)makeProgressIndicator {
    NSProgressIndicator* indicator = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
    indicator.style = NSProgressIndicatorStyleSpinning;
    indicator.controlSize = NSControlSizeSmall;
    indicator.displayedWhenStopped = NO;
    setHorizontalHugging(indicator, NSLayoutPriorityDefaultHigh);
    _renderers.emplace_back([indicator](const CleanupWindowContent& content) {
        if (content.progressIndicator)
            [indicator startAnimation:nil];
        else
            [indicator stopAnimation:nil];
        indicator.accessibilityLabel = nsString(content.statusLabel);
    });
    return indicator;
}

- (NSView*)makeControls {
    NSButton* trash = [self makeButton:&CleanupWindowContent::trashButton action:@selector(trashPressed:)];
    trash.hasDestructiveAction = YES;
    return horizontalStack(cleanupControlGap, @[
        [self makeModeControl], [self makeButton:&CleanupWindowContent::scanButton action:@selector(scanPressed:)],
        [self makeProgressIndicator], makeFlexibleSpace(),
        [self makeButton:&CleanupWindowContent::selectSuggestedButton action:@selector(selectSuggestedPressed:)], trash
    ]);
}

- (NSView*)makeStatus {
    NSTextField* status = [self show:&CleanupWindowContent::statusLabel in:makeWrappingLabel(cleanupBodyFont)];
    NSTextField* selection = [self show:&CleanupWindowContent::selectionLabel
                                     in:makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel)];
    return verticalStack(cleanupStatusGap, @[ status, selection ]);
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
    for (const auto& renderer : _renderers)
        renderer(_content);
    [_results setSelectionEnabled:content.selectionEnabled];
}

- (void)scanPressed:(id)sender {
    if (_actions.scan)
        _actions.scan();
}

// The answer is a new content, in which the mode may be unchanged, so the control shows the content again.
- (void)modeChanged:(NSSegmentedControl*)sender {
    const NSInteger selected = sender.selectedSegment;
    sender.selectedSegment = segmentOf(_content.modeControl);
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

void CleanupWindow::renderCleanupWindow(const CleanupWindowContent& content) { [controller_ render:content]; }

void CleanupWindow::showCleanupWindow() {
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

bool CleanupWindow::cleanupWindowIsShown() const {
    return controller_.window.visible || controller_.window.miniaturized;
}

void CleanupWindow::scrollCleanupResultsToTop() { [controller_.results scrollToTop]; }

void CleanupWindow::ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) {
    closeAlertSheet(controller_.window);
    if (cleanupWindowIsShown())
        showAlertSheet(alert, std::move(answered), controller_.window);
    else
        answerLater(std::move(answered), AlertAnswer::last);
}

} // namespace vantry
