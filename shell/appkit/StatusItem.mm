#include "shell/appkit/StatusItem.h"

#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/BarView.h"
#include "shell/appkit/MouseMonitor.h"
#include "shell/appkit/Stacks.h"

#include <AppKit/AppKit.h>
#include <dispatch/dispatch.h>
#include <utility>

using namespace vantry;

namespace {

// A control-click arrives as a left click.
std::optional<MouseEvent> currentMouseEvent() {
    NSEvent* event = [NSApplication sharedApplication].currentEvent;
    if (!event)
        return std::nullopt;
    return event.type == NSEventTypeRightMouseUp ? MouseEvent::rightMouseUp : MouseEvent::leftMouseUp;
}

} // namespace

@interface OmbrelStatusItemTarget : NSObject
- (instancetype)initWithHandler:(std::function<void(std::optional<MouseEvent>)>)pressed;
- (void)statusItemPressed:(id)sender;
- (void)rightClickSeen;
/// Drops all later presses, including those already posted.
- (void)detach;
@end

@implementation OmbrelStatusItemTarget {
    std::function<void(std::optional<MouseEvent>)> _pressed;
    unsigned _rightClicks; ///< right clicks that reached the action
}

- (instancetype)initWithHandler:(std::function<void(std::optional<MouseEvent>)>)pressed {
    if ((self = [super init]))
        _pressed = std::move(pressed);
    return self;
}

- (void)statusItemPressed:(id)sender {
    const auto event = currentMouseEvent();
    _rightClicks += event == MouseEvent::rightMouseUp ? 1 : 0;
    [self tell:event];
}

- (void)tell:(std::optional<MouseEvent>)event {
    const auto pressed = _pressed; // a copy, because the call may destroy the status item
    pressed(event);
}

- (void)detach {
    _pressed = [](std::optional<MouseEvent>) {};
}

// Some versions of macOS do not send right clicks to the action. If the action has not come by the next turn, report
// the click here.
- (void)rightClickSeen {
    const unsigned before = _rightClicks;
    // Not by the main queue, which is blocked while the menu is open.
    [NSRunLoop.mainRunLoop performBlock:^{
        if (self->_rightClicks == before)
            [self tell:MouseEvent::rightMouseUp];
    }];
}

@end

namespace vantry {

StatusItem::StatusItem(std::function<void(std::optional<MouseEvent>)> pressed)
    : target_([[OmbrelStatusItemTarget alloc] initWithHandler:std::move(pressed)]),
      barView_([[OmbrelBarView alloc] initWithFrame:NSZeroRect]),
      item_([[NSStatusBar systemStatusBar] statusItemWithLength:StatusItemContent{}.length]) {
    NSStatusBarButton* button = item_.button;
    if (!button)
        return;
    button.title = @"";
    button.image = nil;
    button.target = target_;
    button.action = @selector(statusItemPressed:);
    [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
    [button addSubview:barView_];
    pinEdges(barView_, button, 0, 0);
    rightClicks_ = std::make_unique<MouseMonitor>(NSEventMaskRightMouseUp, [target = target_, button](NSEvent*) {
        if (pointerIsOver(button))
            [target rightClickSeen];
    });
}

StatusItem::~StatusItem() {
    [target_ detach];
    [[NSStatusBar systemStatusBar] removeStatusItem:item_];
}

void StatusItem::setContent(const StatusItemContent& content) {
    NSStatusBarButton* button = item_.button;
    if (item_.length != content.length)
        item_.length = content.length;
    button.toolTip = nsString(content.tooltip);
    if (!content.accessibilityLabel.empty())
        button.accessibilityLabel = nsString(content.accessibilityLabel);
    [barView_ setView:content.view];
}

NSView* StatusItem::button() const { return item_.button; }

} // namespace vantry
