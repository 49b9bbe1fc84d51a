#include "app/ShellEntry.h"
#include "app/AppDelegate.h"
#include "app/ProcessEvents.h"
#include "app/TerminationSignals.h"
#include "platform/apple/Services.h"
#include "shell/appkit/AppKitShell.h"

#include <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>
#include <cstdio>
#include <memory>
#include <utility>

namespace vantry {

namespace {

// Checked first, because AppKit ends the process when it reaches no window server.
bool windowServerAnswers() {
    CFDictionaryRef session = CGSessionCopyCurrentDictionary();
    if (!session)
        return false;
    CFRelease(session);
    return true;
}

/// The running user interface.
struct Interface {
    std::shared_ptr<MainQueue> mainQueue;
    std::unique_ptr<AppKitShell> shell;
    std::shared_ptr<AppDelegate> delegate;
    std::unique_ptr<ProcessEvents> events;
};

} // namespace

} // namespace vantry

@interface OmbrelApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithLaunch:(vantry::ShellLaunch)launch;
@end

@implementation OmbrelApplicationDelegate {
    vantry::Interface _interface;
    NSTimeInterval _launchTime; ///< since the system started, in seconds
}

- (instancetype)initWithLaunch:(vantry::ShellLaunch)launch {
    if ((self = [super init])) {
        _interface.mainQueue = vantry::makeMainQueue();
        _interface.shell = std::make_unique<vantry::AppKitShell>();
        _interface.delegate = std::make_shared<vantry::AppDelegate>(
            *_interface.shell,
            vantry::makeAppServices(_interface.mainQueue, vantry::makePreferencesStore(), vantry::makeWorkspace(),
                                    vantry::makeWindowList(), std::move(launch.arguments)));
        _interface.shell->setDelegate(_interface.delegate);
        _interface.events = std::make_unique<vantry::ProcessEvents>(*_interface.mainQueue, *_interface.shell,
                                                                    _interface.delegate, std::move(launch.instance),
                                                                    vantry::catchTerminationSignals().value_or(-1));
    }
    return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    _launchTime = NSProcessInfo.processInfo.systemUptime;
    _interface.delegate->applicationDidFinishLaunching();
}

// Opening the application again calls this instead of starting a second instance. The login agent does that too when
// the session has restored Ombrel, and then nobody asked for the popover.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    constexpr NSTimeInterval timeToLogIn = 10;
    if (NSProcessInfo.processInfo.systemUptime - _launchTime >= timeToLogIn)
        _interface.delegate->showPopover();
    return NO;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
    return YES;
}

// Called before anything is destroyed, so that a move in progress stops after the current file and writes its record.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender {
    _interface.events->applicationWillTerminate();
    return NSTerminateNow;
}

// `run` does not return; the process ends after this.
- (void)applicationWillTerminate:(NSNotification*)notification {
    _interface.events->applicationWillTerminate();
    _interface.events.reset();
    _interface.delegate.reset();
    _interface.shell.reset();
}

@end

namespace vantry {

namespace {

int runShell(ShellLaunch launch) {
    @autoreleasepool {
        if (!windowServerAnswers()) {
            std::fputs("ombrel: There is no display to show the bar on.\n", stderr);
            return noDisplayStatus;
        }
        NSApplication* application = [NSApplication sharedApplication];
        // The application holds its delegate weakly, and ARC may release a local after its last use.
        NS_VALID_UNTIL_END_OF_SCOPE OmbrelApplicationDelegate* delegate =
            [[OmbrelApplicationDelegate alloc] initWithLaunch:std::move(launch)];
        application.delegate = delegate;
        [application run];
        return EXIT_SUCCESS;
    }
}

} // namespace

} // namespace vantry

extern "C" __attribute__((visibility("default"), used)) int ombrelShellEntry(vantry::ShellLaunch launch) {
    return vantry::runShell(std::move(launch));
}
