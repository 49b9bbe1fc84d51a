// Windows, sheets and popovers.

#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/runtime/Runtime.h"

#include <algorithm>

using namespace vantry;
using namespace vantry::apple;

namespace {

// guess: a sheet comes to the front with its window, and has the keyboard
void show(NSWindow* window) {
    for (; window; window = window.attachedSheet) {
        std::erase(visibleWindows(), window);
        visibleWindows().push_back(window);
    }
}

} // namespace

std::vector<NSWindow*>& vantry::apple::visibleWindows() {
    static std::vector<NSWindow*>& windows = *new std::vector<NSWindow*>;
    return windows;
}

@implementation NSWindow {
    __weak NSResponder* _firstResponder;
    NSWindow* _attachedSheet;
    void (^_sheetEnded)(NSModalResponse);
    NSRect _frame;
    BOOL _miniaturized;
}
@synthesize title, contentView = _contentView, delegate, styleMask, minSize, releasedWhenClosed;
@synthesize preventsApplicationTerminationWhenModal, appearance = _appearance;
@synthesize collectionBehavior, opaque, level, accessibilityHelp;

// Defaults: documentation of the properties.
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
    if ((self = [super init])) {
        _frame = rect;
        self.styleMask = style;
        self.title = @"";
        self.releasedWhenClosed = YES;
        self.preventsApplicationTerminationWhenModal = YES;
        self.contentView = [[NSView alloc] initWithFrame:rect];
    }
    return self;
}

- (void)dealloc {
    _contentView->_holder = nil;
}

- (void)setContentView:(NSView*)view {
    if (_contentView)
        _contentView->_holder = nil;
    _contentView = view;
    view->_holder = self;
}

- (void)setAppearance:(NSAppearance*)appearance {
    _appearance = appearance;
    _contentView.appearance = appearance;
}

ANSWERS(NSRect, frame, _frame)

// guess: the title bar counts for nothing, so that the minimum size is that of the contents
- (void)setContentSize:(NSSize)size {
    _frame.size = NSMakeSize(std::max(size.width, self.minSize.width), std::max(size.height, self.minSize.height));
}

- (void)center {
    _frame.origin = NSMakePoint(100, 100);
}

ANSWERS(BOOL, isVisible, std::ranges::count(visibleWindows(), self) > 0 && !_miniaturized)
ANSWERS(BOOL, isMiniaturized, _miniaturized)

- (void)miniaturize {
    _miniaturized = YES;
}

- (void)deminiaturize:(id)sender {
    _miniaturized = NO;
    show(self);
}

- (void)makeKeyAndOrderFront:(id)sender {
    show(self);
}

- (void)orderFrontRegardless {
    show(self);
}

- (void)orderOut:(id)sender {
    std::erase(visibleWindows(), self);
}

- (void)setIgnoresMouseEvents:(BOOL)ignores {
}

- (void)setBackgroundColor:(NSColor*)color {
}

// "Nil when the window is offscreen"
- (NSScreen*)screen {
    for (NSScreen* screen in [NSScreen screens])
        if (NSPointInRect(_frame.origin, screen.frame))
            return screen;
    return nil;
}

- (NSRect)convertRectToScreen:(NSRect)rect {
    rect.origin.x += _frame.origin.x;
    rect.origin.y += _frame.origin.y;
    return rect;
}

- (void)makeKeyWindow {
    if (!self.visible)
        complain("a window becomes key that is not visible");
    show(self);
}

ANSWERS(NSResponder*, firstResponder, _firstResponder)

- (BOOL)makeFirstResponder:(NSResponder*)responder {
    _firstResponder = responder;
    return YES;
}

- (BOOL)performKeyEquivalent:(NSEvent*)event {
    return [_contentView performKeyEquivalent:event];
}

// "Posts NSWindowWillCloseNotification"; a window that is released then is released once too often under ARC.
- (void)close {
    if (self.releasedWhenClosed && !_alert)
        objc::die("a window that is released when it is closed");
    if (!self.visible && !_miniaturized)
        return; // guess
    NSWindow* const kept = self;
    if ([self.delegate respondsToSelector:@selector(windowWillClose:)])
        [self.delegate windowWillClose:nil];
    _miniaturized = NO;
    std::erase(visibleWindows(), kept);
}

// "Simulates the user clicking the close button": a window with a sheet has none that works.
- (void)performClose:(id)sender {
    if (!_attachedSheet && (self.styleMask & NSWindowStyleMaskClosable) != 0)
        [self close];
}

ANSWERS(NSWindow*, attachedSheet, _attachedSheet)

- (void)attachSheet:(NSWindow*)sheet ended:(void (^)(NSModalResponse))ended {
    if (_attachedSheet)
        complain("a second sheet on a window"); // it would wait for the first
    if (!self.visible)
        complain("a sheet on a window that is not visible");
    _attachedSheet = sheet;
    _sheetEnded = [ended copy];
    show(sheet);
}

- (void)endSheet:(NSWindow*)sheet returnCode:(NSModalResponse)response {
    if (sheet == _attachedSheet)
        [self sheetEnds:response];
}

- (void)sheetEnds:(NSModalResponse)response {
    void (^ended)(NSModalResponse) = _sheetEnded;
    std::erase(visibleWindows(), _attachedSheet);
    _attachedSheet = nil;
    _sheetEnded = nil;
    if (ended)
        ended(response);
}

@end

@implementation NSAlert {
    NSMutableArray<NSButton*>* _buttons;
    NSWindow* _window;
    __weak NSWindow* _parent;
}
@synthesize messageText, informativeText, alertStyle;

- (instancetype)init {
    if ((self = [super init])) {
        _buttons = [NSMutableArray array];
        _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 260, 200)
                                              styleMask:NSWindowStyleMaskTitled
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
    }
    return self;
}

ANSWERS(NSWindow*, window, _window)
ANSWERS(NSArray<NSButton*>*, buttons, _buttons)

// "The first button has Return, one titled Cancel has Escape." guess: they stand below each other
- (NSButton*)addButtonWithTitle:(NSString*)title {
    NSButton* button = [NSButton buttonWithTitle:title target:self action:@selector(buttonPressed:)];
    const CGFloat fromTop = 60 + 30 * static_cast<CGFloat>(_buttons.count);
    button->_place = NSMakeRect(20, fromTop, [button contentSizeAtWidth:0].width, 24);
    button.keyEquivalent = _buttons.count == 0 ? @"\r" : [title isEqualToString:@"Cancel"] ? @"\033" : @"";
    [_buttons addObject:button];
    [_window.contentView addSubview:button];
    return button;
}

- (void)buttonPressed:(NSButton*)sender {
    NSInteger index = 0;
    for (NSButton* button in _buttons) {
        if (button == sender)
            break;
        ++index;
    }
    [_parent sheetEnds:NSAlertFirstButtonReturn + index];
}

// The alert lives as long as its sheet.
- (void)beginSheetModalForWindow:(NSWindow*)window completionHandler:(void (^)(NSModalResponse))handler {
    _parent = window;
    _window->_alert = self;
    NSWindow* sheet = _window;
    [window attachSheet:sheet
                  ended:^(NSModalResponse response) {
                      handler(response);
                      sheet->_alert = nil;
                  }];
}

@end

@implementation NSPopover {
    NSWindow* _window;
}
@synthesize behavior, animates, contentViewController, delegate;
@synthesize contentSize = _contentSize;

- (void)dealloc { // guess
    [_window close];
}

// guess: the delegate is told in a later turn, after the animation
- (void)close {
    if (!_window)
        return;
    [_window close];
    _window = nil;
    NSPopover* const closed = self;
    post([closed] { [closed.delegate popoverDidClose:nil]; });
}

- (void)setContentSize:(NSSize)size {
    _contentSize = size;
    [_window setContentSize:size];
}

ANSWERS(BOOL, isShown, _window != nil)

// "If the view is not in a window, an exception is raised."
- (void)showRelativeToRect:(NSRect)rect ofView:(NSView*)view preferredEdge:(NSRectEdge)edge {
    if (!view.window)
        objc::die("a popover at a view without a window");
    _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, _contentSize.width, _contentSize.height)
                                          styleMask:NSWindowStyleMaskBorderless
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    _window.releasedWhenClosed = NO;
    _window.contentView = self.contentViewController.view;
    _window->_popover = self;
    [_window makeKeyAndOrderFront:nil];
}

- (void)performClose:(id)sender {
    [self close];
}

@end
