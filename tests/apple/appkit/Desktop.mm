#include "tests/apple/appkit/Desktop.h"

#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/appkit/Layout.h"
#include "tests/apple/runtime/Runtime.h"

#include <algorithm>
#include <cmath>
#include <fmt/ranges.h>

namespace vantry::apple {

namespace {

NSView* rootOf(NSView* view) {
    while (view->_parent)
        view = view->_parent;
    return view;
}

// As far up as the contents go.
void scrollIntoSight(NSView* view) {
    for (NSView* each = view; each->_parent; each = each->_parent) {
        if (![each->_parent isKindOfClass:[NSClipView class]])
            continue;
        auto* const clip = static_cast<NSClipView*>(each->_parent);
        clip->_scrolled = 0;
        const CGFloat middle = NSMidY(placeInRoot(view)) - placeInRoot(clip).origin.y - clip->_place.size.height / 2;
        clip->_scrolled = std::clamp(middle, 0.0, std::max(0.0, each->_place.size.height - clip->_place.size.height));
    }
}

void collect(NSView* view, std::vector<NSView*>& found) {
    if (!view || view.hidden)
        return;
    found.push_back(view);
    for (NSView* child : view->_children)
        collect(child, found);
}

NSEvent* makeEvent(NSEventType type) {
    NSEvent* event = [[NSEvent alloc] init];
    event->_type = type;
    return event;
}

/// An event of the mouse over the middle of `view`.
NSEvent* makeEvent(NSEventType type, NSView* view, NSInteger number) {
    NSEvent* event = makeEvent(type);
    event->_window = view.window;
    event->_eventNumber = number;
    const NSRect place = [view.window convertRectToScreen:[view convertRect:view.bounds toView:nil]];
    [NSEvent setMouseLocation:NSMakePoint(NSMidX(place), NSMidY(place))];
    return event;
}

// NSPopoverBehaviorTransient: "when the user interacts with a user interface element outside the popover".
void closeTransientPopovers(NSWindow* pressed) {
    if (!Desktop::get().popoversCloseForStatusItems && [pressed.contentView isKindOfClass:[NSStatusBarButton class]])
        return;
    for (NSWindow* window : std::vector(visibleWindows()))
        if (NSPopover* popover = window->_popover; popover && window != pressed)
            if (popover.behavior == NSPopoverBehaviorTransient)
                [popover close];
}

NSInteger nextEventNumber() {
    static NSInteger number = 0;
    return ++number;
}

/// Lets `block` find the event as the current one, if no monitor swallows it.
void send(NSEvent* event, const std::function<void(NSEvent*)>& block) {
    @autoreleasepool {
        NSEvent* const left = [NSEvent eventThroughMonitors:event];
        if (!left)
            return;
        [[NSApplication sharedApplication] setCurrentEvent:left]; // "the last event object the app retrieved"
        block(left);
    }
}

NSString* charactersOf(unsigned short key) {
    switch (key) {
    case returnKey: return @"\r";
    case spaceKey: return @" ";
    case escapeKey: return @"\033";
    case letterW: return @"w";
    case pageUpKey: return @"\uF72C";
    case pageDownKey: return @"\uF72D";
    default: objc::die("a key that has no characters here");
    }
}

// "Cocoa Event Handling Guide", the path of key events: key equivalents, then the first responder.
void deliverKey(NSEvent* event, NSWindow* window) {
    if ([window performKeyEquivalent:event])
        return;
    NSPopover* const popover = window->_popover; // its controller comes behind the views
    NSResponder* const next = popover ? popover.contentViewController : window;
    if (event->_keyCode == spaceKey && [window.firstResponder isKindOfClass:[NSControl class]])
        [static_cast<NSControl*>(window.firstResponder) performClick:nil];
    else if (event->_keyCode != escapeKey)
        [next keyDown:event];
    else if ([next respondsToSelector:@selector(cancelOperation:)])
        sendMessage(next, @selector(cancelOperation:), nil);
}

void paint(NSView* view, CGContextRef context) {
    if (view.hidden)
        return;
    const NSSize size = view->_place.size;
    CGContextSaveGState(context);
    CGContextTranslateCTM(context, view->_parent ? view->_place.origin.x : 0,
                          view->_parent ? view->_place.origin.y : 0);
    [view paintOn:context size:{size.width, size.height}];
    CGContextSaveGState(context);
    if (!view.flipped) {
        CGContextTranslateCTM(context, 0, size.height);
        CGContextScaleCTM(context, 1, -1);
    }
    NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context flipped:view.flipped];
    [view drawRect:view.bounds];
    NSGraphicsContext.currentContext = nil;
    view.needsDisplay = NO;
    CGContextRestoreGState(context);
    if ([view isKindOfClass:[NSClipView class]]) {
        CGContextClipToRect(context, CGRectMake(0, 0, size.width, size.height));
        CGContextTranslateCTM(context, 0, -static_cast<NSClipView*>(view)->_scrolled);
    }
    for (NSView* child : view->_children)
        paint(child, context);
    CGContextRestoreGState(context);
}

} // namespace

NSRect placeInRoot(NSView* view) {
    NSRect place = view->_place;
    for (NSView* each = view->_parent; each && each->_parent; each = each->_parent) {
        place.origin.x += each->_place.origin.x;
        place.origin.y += each->_place.origin.y;
    }
    for (NSView* each = view->_parent; each; each = each->_parent)
        if ([each isKindOfClass:[NSClipView class]])
            place.origin.y -= static_cast<NSClipView*>(each)->_scrolled;
    return place;
}

void prepareDesktop() {
    @autoreleasepool { // what lives as long as the process is made before anything is counted
        (void)[NSApplication sharedApplication];
        (void)[NSStatusBar systemStatusBar];
        (void)[NSWorkspace sharedWorkspace];
        (void)[NSPasteboard generalPasteboard];
        (void)[NSRunLoop mainRunLoop];
        (void)[NSOperationQueue mainQueue];
        (void)[NSUserDefaults standardUserDefaults];
        (void)[NSFileManager defaultManager];
        (void)[NSColorSpace sRGBColorSpace];
        (void)[NSProcessInfo processInfo];
    }
    // "Threading Programming Guide", Thread Safety Summary: the main thread only.
    @autoreleasepool {
        for (Class cls : {[NSResponder class],
                          [NSLayoutAnchor class],
                          [NSLayoutConstraint class],
                          [NSCell class],
                          [NSMenu class],
                          [NSMenuItem class],
                          [NSAlert class],
                          [NSStatusBar class],
                          [NSStatusItem class],
                          [NSEvent class],
                          [NSScreen class],
                          [NSTimer class]})
            objc::restrictToMainThread((__bridge void*)cls);
    }
}

std::size_t layOutWindows() {
    std::size_t steps = 0;
    for (NSWindow* window : std::vector(visibleWindows()))
        if (!window->_alert && window.visible)
            steps += layOut(window.contentView, window.frame.size);
    return steps;
}

std::vector<NSWindow*> windowsOnScreen() {
    std::vector<NSWindow*> windows = visibleWindows();
    std::erase_if(windows, [](NSWindow* window) { return !window.visible; });
    return windows;
}

NSWindow* keyWindow() {
    const std::vector<NSWindow*> windows = windowsOnScreen();
    return windows.empty() ? nil : windows.back();
}

NSWindow* windowTitled(const std::string& title) {
    for (NSWindow* window : visibleWindows())
        if (title == window.title.UTF8String)
            return window;
    return nil;
}

NSAlert* alertOf(NSWindow* window) {
    NSWindow* const sheet = window.attachedSheet;
    return sheet ? sheet->_alert : nil;
}

NSView* statusButton() {
    for (NSWindow* window : visibleWindows())
        if ([window.contentView isKindOfClass:[NSStatusBarButton class]])
            return window.contentView;
    return nil;
}

std::vector<NSView*> viewsBelow(NSView* root) {
    std::vector<NSView*> found;
    collect(root, found);
    return found;
}

NSView* viewTitled(NSView* root, const std::string& title) {
    for (NSView* view : viewsBelow(root)) {
        NSString* const text = [view isKindOfClass:[NSButton class]]      ? static_cast<NSButton*>(view).title
                               : [view isKindOfClass:[NSTextField class]] ? static_cast<NSTextField*>(view).stringValue
                                                                          : nil;
        if (text && title == text.UTF8String)
            return view;
    }
    return nil;
}

std::string framesOf(NSView* root) {
    std::string text;
    for (NSView* view : viewsBelow(root)) {
        const NSRect place = placeInRoot(view);
        if (place.origin.y > root->_place.size.height || [view isKindOfClass:[NSStackView class]] ||
            [view isMemberOfClass:[NSView class]])
            continue;
        text += fmt::format("{} {:.0f},{:.0f} {:.0f}x{:.0f}\n", nameOf(view), place.origin.x, place.origin.y,
                            place.size.width, place.size.height);
    }
    return text;
}

std::vector<std::string> spokenContents(NSView* root) {
    std::vector<std::string> lines;
    for (NSView* view : viewsBelow(root)) {
        const auto add = [&](const std::string& role, NSString* name, std::vector<std::string> more = {}) {
            if ([view isKindOfClass:[NSControl class]] && !static_cast<NSControl*>(view).enabled)
                more.emplace_back("disabled");
            std::string indentation;
            for (NSView* each = view->_parent; each; each = each->_parent)
                if (each.accessibilityElement)
                    indentation += "  ";
            lines.push_back(fmt::format("{}{} {}{}", indentation, role, name ? name.UTF8String : "",
                                        more.empty() ? "" : fmt::format(" ({})", fmt::join(more, ", "))));
        };
        NSString* const label = view.accessibilityLabel;
        if ([view isKindOfClass:[NSPopUpButton class]]) {
            auto* const titled = static_cast<NSTextField*>(view.accessibilityTitleUIElement);
            add("combo box", titled.stringValue, {static_cast<NSButton*>(view).title.UTF8String});
        } else if ([view isKindOfClass:[NSButton class]]) {
            auto* const button = static_cast<NSButton*>(view);
            const bool isChecked = button.state == NSControlStateValueOn;
            add(button->_isCheckBox ? "check box" : "push button", label ? label : button.title,
                isChecked ? std::vector<std::string>{"checked"} : std::vector<std::string>{});
        } else if ([view isKindOfClass:[NSSegmentedControl class]]) {
            auto* const control = static_cast<NSSegmentedControl*>(view);
            for (NSInteger segment = 0; segment < control.segmentCount; ++segment)
                add("radio button", [control labelForSegment:segment],
                    segment == control.selectedSegment ? std::vector<std::string>{"checked"}
                                                       : std::vector<std::string>{});
        } else if ([view isKindOfClass:[NSTextField class]]) {
            if (static_cast<NSTextField*>(view).stringValue.length > 0)
                add("label", static_cast<NSTextField*>(view).stringValue);
        } else if ([view isKindOfClass:[NSProgressIndicator class]]) {
            if (static_cast<NSProgressIndicator*>(view).isRunning)
                add("progress bar", label);
        } else if (view.accessibilityElement) {
            const std::string role = view.accessibilityRole.UTF8String;
            NSString* const value = view.accessibilityValue;
            add(role == "AXProgressIndicator" ? "progress bar"
                : role == "AXList"            ? "list"
                                              : "group",
                label, value ? std::vector<std::string>{value.UTF8String} : std::vector<std::string>{});
        }
    }
    return lines;
}

NSView* viewAtMiddle(NSView* view) {
    scrollIntoSight(view);
    NSView* const root = rootOf(view);
    const NSRect place = placeInRoot(view);
    const CGFloat top = root->_place.origin.y;
    return [root hitTest:NSMakePoint(root->_place.origin.x + NSMidX(place), top + NSMidY(place))];
}

void click(NSView* control, NSEventType button) {
    NSView* const hit = viewAtMiddle(control);
    if (hit != control || ![hit isKindOfClass:[NSControl class]])
        return complain("a click on " + nameOf(control) + " reaches " + nameOf(hit));
    auto* const clicked = static_cast<NSControl*>(hit);
    const NSInteger number = nextEventNumber(); // of the press and of its release
    if (button == NSEventTypeLeftMouseUp || button == NSEventTypeRightMouseUp)
        send(makeEvent(static_cast<NSEventType>(button - 1), clicked, number),
             [clicked](NSEvent*) { closeTransientPopovers(clicked.window); });
    send(makeEvent(button, clicked, number), [clicked, button](NSEvent*) {
        const bool isKept = button == NSEventTypeRightMouseUp && !Desktop::get().statusItemsActOnRightClicks &&
                            [clicked isKindOfClass:[NSStatusBarButton class]];
        if (!isKept && (clicked->_sendsOn & (1ULL << button)) != 0)
            [clicked performClick:nil];
    });
}

// "The event handler will be called for events posted to other applications", which have no window of this one.
void clickElsewhere(NSPoint place, NSEventType button) {
    @autoreleasepool {
        const NSInteger number = nextEventNumber();
        [NSEvent setMouseLocation:place];
        for (const auto type : {static_cast<NSEventType>(button - 1), button}) {
            NSEvent* event = makeEvent(type);
            event->_eventNumber = number;
            [NSEvent showToGlobalMonitors:event];
        }
        [[NSApplication sharedApplication] deactivate];
    }
}

void choose(NSPopUpButton* popUp, NSInteger index) {
    if (!popUp.enabled)
        return;
    [popUp selectItemAtIndex:index];
    click(popUp);
}

void choose(NSSegmentedControl* control, NSInteger segment) {
    control.selectedSegment = segment;
    click(control);
}

void press(unsigned short key, bool isRepetition, NSEventModifierFlags modifiers) {
    NSEvent* const event = makeEvent(NSEventTypeKeyDown);
    event->_keyCode = key;
    event->_isRepetition = isRepetition;
    event->_modifiers = modifiers;
    event->_characters = charactersOf(key);
    send(event, [](NSEvent* left) { deliverKey(left, keyWindow()); });
}

bool choose(NSMenu* menu, const std::string& title) {
    for (NSMenuItem* item in menu.itemArray) {
        if (item.submenu && item.enabled && choose(item.submenu, title))
            return true;
        if (title != item.title.UTF8String || !item.enabled || !item.action)
            continue;
        sendMessage(item.target, item.action, item);
        return true;
    }
    return false;
}

NSMenu* takeMenu() { return [NSMenu takePoppedUp]; }

void miniaturize(NSWindow* window) { [window miniaturize]; }

void setAppearance(NSWindow* window, Appearance appearance) {
    window.appearance =
        [NSAppearance appearanceNamed:appearance == Appearance::dark ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua];
}

CGContextRef drawWindow(NSWindow* window) {
    NSView* const root = window.contentView;
    const NSSize size = root->_place.size;
    CGContextRef picture = makePicture({size.width, size.height});
    [root.effectiveAppearance performAsCurrentDrawingAppearance:^{
        fill(picture, Rect{0, 0, size.width, size.height}, rgbaOf([NSColor windowBackgroundColor]));
        paint(root, picture);
    }];
    return picture;
}

void wakeFromSleep() {
    @autoreleasepool {
        [[NSWorkspace sharedWorkspace].notificationCenter postNotificationName:NSWorkspaceDidWakeNotification
                                                                        object:nil];
    }
}

} // namespace vantry::apple
