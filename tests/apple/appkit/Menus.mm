// The status bar and menus.

#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/runtime/Runtime.h"

using namespace vantry;
using namespace vantry::apple;

@implementation NSStatusBarButton
@end

@implementation NSStatusItem {
    NSStatusBarButton* _button;
    NSWindow* _window;
}
@synthesize length = _length;

constexpr CGFloat menuBarHeight = 24; // guess: of a display without a notch

- (NSStatusBarButton*)button {
    if (_button)
        return _button;
    _button = [[NSStatusBarButton alloc] initWithFrame:NSZeroRect];
    _button.bordered = NO;
    _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(1000, 876, _length, menuBarHeight)
                                          styleMask:NSWindowStyleMaskBorderless
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    _window.releasedWhenClosed = NO;
    _window.contentView = _button;
    visibleWindows().insert(visibleWindows().begin(), _window); // never key
    return _button;
}

- (void)setLength:(CGFloat)length {
    _length = length;
    [self.button.window setContentSize:NSMakeSize(length, menuBarHeight)];
}

- (void)close {
    [_window close];
}

@end

@implementation NSStatusBar

SHARED(NSStatusBar, systemStatusBar)

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    NSStatusItem* item = [[NSStatusItem alloc] init];
    item.length = length;
    return item;
}

- (void)removeStatusItem:(NSStatusItem*)item {
    [item close];
}

@end

@implementation NSMenuItem
@synthesize title, action, keyEquivalent, target, enabled, state, representedObject, submenu;

- (instancetype)initWithTitle:(NSString*)text action:(SEL)selector keyEquivalent:(NSString*)key {
    if ((self = [super init])) {
        self.title = text;
        self.action = selector;
        self.keyEquivalent = key;
        self.enabled = YES;
    }
    return self;
}

+ (NSMenuItem*)separatorItem {
    return [[NSMenuItem alloc] initWithTitle:@"" action:nullptr keyEquivalent:@""];
}

@end

@implementation NSMenu {
    NSMutableArray<NSMenuItem*>* _items;
}
@synthesize title, autoenablesItems;

static NSMenu* poppedUp;

+ (void)popUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view {
    if (!event || !view.window)
        objc::die("a menu without an event or at a view without a window");
    complainOfNestedLoop();
    poppedUp = menu;
}

- (BOOL)popUpMenuPositioningItem:(NSMenuItem*)item atLocation:(NSPoint)location inView:(NSView*)view {
    complainOfNestedLoop();
    poppedUp = self;
    return YES;
}

+ (NSMenu*)takePoppedUp {
    NSMenu* const menu = poppedUp;
    poppedUp = nil;
    return menu;
}

- (instancetype)initWithTitle:(NSString*)text {
    if ((self = [super init])) {
        self.title = text;
        self.autoenablesItems = YES;
        _items = [NSMutableArray array];
    }
    return self;
}

// autoenablesItems: "enabled or disabled according to whether the target implements the action"; here when it is added
- (void)addItem:(NSMenuItem*)item {
    if (self.autoenablesItems)
        item.enabled = item.submenu || (item.action && [item.target respondsToSelector:item.action]);
    [_items addObject:item];
}

ANSWERS(NSArray<NSMenuItem*>*, itemArray, _items)

@end
