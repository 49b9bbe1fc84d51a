// The application, its events, and what it knows of the desktop.

#include "tests/apple/appkit/Desktop.h"
#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/runtime/Runtime.h"

#include <algorithm>
#include <thread>
#include <utility>

using namespace vantry;
using namespace vantry::apple;

namespace {

struct Monitor {
    NSObject* token;
    NSEventMask mask;
    NSEvent* (^handler)(NSEvent*);
    bool isForOthers; ///< of events that go to other applications
};
NSPoint mouseLocation{-1, -1};
std::vector<Monitor> monitors;

} // namespace

Desktop& Desktop::get() {
    static Desktop& one = *new Desktop;
    return one;
}

void Desktop::reset() {
    @autoreleasepool {
        get() = {};
        [[NSApplication sharedApplication] setCurrentEvent:nil];
    }
}

@implementation NSEvent

+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))handler {
    NSObject* token = [[NSObject alloc] init];
    monitors.push_back({token, mask, [handler copy], false});
    return token;
}

+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler {
    id token = [self addLocalMonitorForEventsMatchingMask:mask
                                                  handler:^NSEvent*(NSEvent* event) {
                                                      handler(event);
                                                      return event;
                                                  }];
    monitors.back().isForOthers = true;
    return token;
}

+ (void)showToGlobalMonitors:(NSEvent*)event {
    for (const Monitor& monitor : std::vector(monitors))
        if (monitor.isForOthers && (monitor.mask & (1ULL << event->_type)) != 0)
            (void)monitor.handler(event);
}

+ (NSPoint)mouseLocation {
    return mouseLocation;
}

+ (void)setMouseLocation:(NSPoint)location {
    mouseLocation = location;
}

+ (void)removeMonitor:(id)token {
    if (std::erase_if(monitors, [token](const Monitor& each) { return each.token == token; }) == 0)
        complain("an event monitor is removed that is not there");
}

+ (NSEvent*)eventThroughMonitors:(NSEvent*)event {
    for (const Monitor& monitor : std::vector(monitors))
        if (event && !monitor.isForOthers && (monitor.mask & (1ULL << event->_type)) != 0)
            event = monitor.handler(event);
    return event;
}

ANSWERS(NSEventType, type, _type)
ANSWERS(NSInteger, eventNumber, _eventNumber)
ANSWERS(NSWindow*, window, _window)
ANSWERS(unsigned short, keyCode, _keyCode)
ANSWERS(BOOL, isARepeat, _isRepetition)
ANSWERS(NSEventModifierFlags, modifierFlags, _modifiers)
ANSWERS(NSString*, charactersIgnoringModifiers, _characters)

@end

@implementation NSApplication {
    NSEvent* _currentEvent;
    NSApplicationActivationPolicy _policy;
    BOOL _active;
}
@synthesize delegate;

SHARED(NSApplication, sharedApplication)

ANSWERS(NSEvent*, currentEvent, _currentEvent)

- (void)setCurrentEvent:(NSEvent*)event {
    _currentEvent = event;
}

- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    _policy = policy;
    return YES;
}

ANSWERS(NSApplicationActivationPolicy, activationPolicy, _policy)

- (void)activateIgnoringOtherApps:(BOOL)ignoringOthers {
    _active = YES;
}

- (void)deactivate {
    _active = NO;
}

ANSWERS(BOOL, isActive, _active)

// Unlike the real one, which ends the process, it returns, so that a test can see what is left.
- (void)run {
    Desktop::get().hasEnded = false;
    [self.delegate applicationDidFinishLaunching:nil];
    Desktop::get().whileRunning();
    if (!Desktop::get().hasEnded)
        complain("the application still runs");
}

- (void)terminate:(id)sender {
    const bool isPrevented = std::ranges::any_of(visibleWindows(), [](NSWindow* window) {
        return window.attachedSheet && window.attachedSheet.preventsApplicationTerminationWhenModal;
    });
    if (Desktop::get().hasEnded || isPrevented)
        return;
    if ([self.delegate respondsToSelector:@selector(applicationShouldTerminate:)] &&
        [self.delegate applicationShouldTerminate:self] != NSTerminateNow)
        return;
    Desktop::get().hasEnded = true;
    [self.delegate applicationWillTerminate:nil];
}

@end

extern "C" {

NSNotificationName const NSWorkspaceDidWakeNotification = @"NSWorkspaceDidWakeNotification";
NSPasteboardType const NSPasteboardTypeString = @"public.utf8-plain-text";
NSAccessibilityRole const NSAccessibilityGroupRole = @"AXGroup";
NSAccessibilityRole const NSAccessibilityListRole = @"AXList";
NSAccessibilityRole const NSAccessibilityProgressIndicatorRole = @"AXProgressIndicator";
NSAccessibilityRole const NSAccessibilityUnknownRole = @"AXUnknown";
NSAccessibilityNotificationName const NSAccessibilityValueChangedNotification = @"AXValueChanged";

void NSAccessibilityPostNotification(id element, NSAccessibilityNotificationName) {
    NSString* const value = [element accessibilityValue];
    Desktop::get().changedValues.emplace_back(value ? value.UTF8String : "");
}

// "Null if the caller is not running within a Quartz GUI session."
CFDictionaryRef CGSessionCopyCurrentDictionary() {
    return Desktop::get().hasWindowServer ? (__bridge_retained CFDictionaryRef)[NSDictionary dictionary] : nullptr;
}

const CFStringRef kCGWindowBounds = CFSTR("kCGWindowBounds");
const CFStringRef kCGWindowLayer = CFSTR("kCGWindowLayer");
const CFStringRef kCGWindowOwnerName = CFSTR("kCGWindowOwnerName");
const CFStringRef kCGWindowOwnerPID = CFSTR("kCGWindowOwnerPID");

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption, CGWindowID) {
    return (__bridge_retained CFArrayRef)Desktop::get().windows;
}

// "The dictionary was created by CGRectCreateDictionaryRepresentation", whose keys Apple does not document.
bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGRect* rect) {
    NSDictionary* const sides = (__bridge NSDictionary*)dictionary;
    const auto side = [sides](NSString* key) -> CGFloat { return [[sides objectForKey:key] intValue]; };
    *rect = CGRectMake(side(@"X"), side(@"Y"), side(@"Width"), side(@"Height"));
    return true;
}
}

@implementation NSScreen {
    Desktop::Display _display;
}

+ (NSArray<NSScreen*>*)screens {
    NSMutableArray* screens = [NSMutableArray array];
    for (const Desktop::Display& display : Desktop::get().displays) {
        NSScreen* screen = [[NSScreen alloc] init];
        screen->_display = display;
        [screens addObject:screen];
    }
    return screens;
}

// "The screen containing the window with the keyboard focus"; guess: here the first.
+ (NSScreen*)mainScreen {
    return [self screens].firstObject;
}

ANSWERS(NSRect, frame, _display.frame)

// Without the menu bar. guess: on every display, and there is no Dock
- (NSRect)visibleFrame {
    NSRect room = _display.frame;
    room.size.height -= 24;
    return room;
}

ANSWERS(NSString*, localizedName, [NSString stringWithUTF8String:_display.name.c_str()])

@end

@implementation NSRunningApplication {
    NSString* _bundleIdentifier;
}

+ (instancetype)applicationWithIdentifier:(const std::string&)identifier {
    NSRunningApplication* application = [[NSRunningApplication alloc] init];
    application->_bundleIdentifier = identifier.empty() ? nil : [NSString stringWithUTF8String:identifier.c_str()];
    return application;
}

ANSWERS(NSString*, bundleIdentifier, _bundleIdentifier)

@end

@implementation NSWorkspaceOpenConfiguration
@synthesize promptsUserIfNeeded;

+ (instancetype)configuration {
    return [[self alloc] init];
}

@end

@implementation NSWorkspace {
    NSNotificationCenter* _center;
}

+ (NSWorkspace*)sharedWorkspace {
    static NSWorkspace* const workspace = [[NSWorkspace alloc] init];
    if (!workspace->_center)
        workspace->_center = [[NSNotificationCenter alloc] init];
    return workspace;
}

ANSWERS(NSNotificationCenter*, notificationCenter, _center)

- (NSArray<NSRunningApplication*>*)runningApplications {
    NSMutableArray* applications = [NSMutableArray array];
    for (const std::string& identifier : Desktop::get().running)
        [applications addObject:[NSRunningApplication applicationWithIdentifier:identifier]];
    return applications;
}

// "The handler is called on a concurrent queue."
- (void)openURL:(NSURL*)url
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:(void (^)(NSRunningApplication*, NSError*))handler {
    const std::string what = (url.fileURL ? url.path : url.absoluteString).UTF8String;
    const bool fails = std::ranges::count(Desktop::get().unopenable, what) > 0;
    Desktop::get().opened.push_back(what);
    std::thread([handler, fails] {
        @autoreleasepool {
            handler(nil,
                    fails ? [NSError errorWithDomain:NSCocoaErrorDomain code:NSFileNoSuchFileError userInfo:nil] : nil);
        }
    }).join();
}

- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls {
    for (NSURL* url in urls)
        Desktop::get().revealed.push_back(url.path.UTF8String);
}

@end

@implementation NSPasteboard {
    NSInteger _changeCount;
}

+ (NSPasteboard*)generalPasteboard {
    static NSPasteboard* const pasteboard = [[NSPasteboard alloc] init];
    return pasteboard;
}

- (NSInteger)clearContents {
    Desktop::get().pasteboard.clear();
    return ++_changeCount;
}

- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)type {
    Desktop::get().pasteboard[type.UTF8String] = string.UTF8String;
    return YES;
}

@end
