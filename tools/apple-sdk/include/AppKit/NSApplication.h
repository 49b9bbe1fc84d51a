// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <AppKit/NSWindow.h>

SDK_IN_13_BEGIN
NS_ASSUME_NONNULL_BEGIN
// Application
typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
  NSApplicationActivationPolicyRegular, NSApplicationActivationPolicyAccessory, NSApplicationActivationPolicyProhibited
};
typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) {
  NSApplicationActivateAllWindows = 1 << 0, NSApplicationActivateIgnoringOtherApps = 1 << 1
};
typedef NS_ENUM(NSUInteger, NSApplicationTerminateReply) { NSTerminateCancel = 0, NSTerminateNow = 1, NSTerminateLater = 2 };
@interface NSApplication : NSResponder <NSAppearanceCustomization, NSAccessibility>
@property (class, readonly, strong) __kindof NSApplication *sharedApplication;
@property (nullable, weak) id<NSApplicationDelegate> delegate;
@property (nullable, readonly, strong) NSEvent *currentEvent;
@property (null_unspecified, strong) NSImage *applicationIconImage;
@property (nullable, readonly, weak) NSWindow *mainWindow, *keyWindow;
@property (readonly, copy) NSArray<NSWindow *> *windows;
@property (readonly, getter=isActive) BOOL active;
@property (readonly, getter=isRunning) BOOL running;
@property (nullable, strong) NSMenu *mainMenu;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (NSApplicationActivationPolicy)activationPolicy;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (void)activate SDK_AVAILABLE_FROM(14.0);
- (void)deactivate;
- (void)hide:(nullable id)sender;
- (void)finishLaunching;
- (void)run;
- (void)stop:(nullable id)sender;
- (void)terminate:(nullable id)sender;
- (void)replyToApplicationShouldTerminate:(BOOL)shouldTerminate;
- (NSModalResponse)runModalForWindow:(NSWindow *)window;
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
- (nullable NSEvent *)nextEventMatchingMask:(NSEventMask)mask untilDate:(nullable NSDate *)expiration inMode:(NSRunLoopMode)mode dequeue:(BOOL)deqFlag;
- (void)sendEvent:(NSEvent *)event;
@end
APPKIT_EXTERN __kindof NSApplication *_Null_unspecified NSApp;
@protocol NSApplicationDelegate <NSObject>
@optional
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication *)sender;
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication *)sender;
- (BOOL)applicationShouldHandleReopen:(NSApplication *)sender hasVisibleWindows:(BOOL)flag;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication *)app;
- (void)applicationDidFinishLaunching:(NSNotification *)notification;
- (void)applicationWillTerminate:(NSNotification *)notification;
- (void)applicationDidResignActive:(NSNotification *)notification;
@end
APPKIT_EXTERN NSNotificationName const NSApplicationDidFinishLaunchingNotification, NSApplicationWillTerminateNotification,
    NSApplicationDidBecomeActiveNotification, NSApplicationDidResignActiveNotification,
    NSApplicationDidChangeScreenParametersNotification;

// Workspace and running applications
@interface NSRunningApplication : NSObject
@property (class, readonly, strong) NSRunningApplication *currentApplication;
+ (NSArray<NSRunningApplication *> *)runningApplicationsWithBundleIdentifier:(NSString *)bundleIdentifier;
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@property (readonly, getter=isTerminated) BOOL terminated;
@property (readonly, getter=isActive) BOOL active;
@property (readonly) NSApplicationActivationPolicy activationPolicy;
@property (nullable, readonly, copy) NSString *localizedName, *bundleIdentifier;
@property (nullable, readonly, copy) NSURL *bundleURL, *executableURL;
@property (readonly) pid_t processIdentifier;
@property (nullable, readonly, strong) NSImage *icon;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
- (BOOL)terminate;
@end
@interface NSWorkspaceOpenConfiguration : NSObject <NSCopying>
+ (instancetype)configuration;
@property BOOL activates, hides, addsToRecentItems, createsNewApplicationInstance, promptsUserIfNeeded;
@property (copy) NSArray<NSString *> *arguments;
@end
@interface NSWorkspace : NSObject
@property (class, readonly, strong) NSWorkspace *sharedWorkspace;
@property (readonly, strong) NSNotificationCenter *notificationCenter;
@property (readonly, copy) NSArray<NSRunningApplication *> *runningApplications;
@property (nullable, readonly, strong) NSRunningApplication *frontmostApplication;
- (BOOL)openURL:(NSURL *)url;
- (void)openURL:(NSURL *)url configuration:(NSWorkspaceOpenConfiguration *)configuration
    completionHandler:(void (^_Nullable)(NSRunningApplication *_Nullable app, NSError *_Nullable error))completionHandler;
- (void)openApplicationAtURL:(NSURL *)applicationURL configuration:(NSWorkspaceOpenConfiguration *)configuration
           completionHandler:(void (^_Nullable)(NSRunningApplication *_Nullable app, NSError *_Nullable error))completionHandler;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL *> *)fileURLs;
- (void)recycleURLs:(NSArray<NSURL *> *)URLs
    completionHandler:(nullable void (^)(NSDictionary<NSURL *, NSURL *> *newURLs, NSError *_Nullable error))handler;
- (nullable NSURL *)URLForApplicationWithBundleIdentifier:(NSString *)bundleIdentifier;
- (nullable NSURL *)URLForApplicationToOpenURL:(NSURL *)url;
- (NSImage *)iconForFile:(NSString *)fullPath;
- (NSImage *)iconForContentType:(UTType *)contentType;
- (BOOL)isFilePackageAtPath:(NSString *)fullPath;
- (nullable NSURL *)desktopImageURLForScreen:(NSScreen *)screen;
- (nullable NSDictionary<NSWorkspaceDesktopImageOptionKey, id> *)desktopImageOptionsForScreen:(NSScreen *)screen;
@property (readonly) BOOL accessibilityDisplayShouldReduceTransparency, accessibilityDisplayShouldReduceMotion,
    accessibilityDisplayShouldIncreaseContrast, accessibilityDisplayShouldDifferentiateWithoutColor;
@end
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidWakeNotification, NSWorkspaceWillSleepNotification,
    NSWorkspaceScreensDidWakeNotification, NSWorkspaceScreensDidSleepNotification, NSWorkspaceSessionDidBecomeActiveNotification,
    NSWorkspaceDidMountNotification, NSWorkspaceDidUnmountNotification, NSWorkspaceWillUnmountNotification,
    NSWorkspaceDidRenameVolumeNotification, NSWorkspaceDidLaunchApplicationNotification, NSWorkspaceDidTerminateApplicationNotification,
    NSWorkspaceActiveSpaceDidChangeNotification, NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;
APPKIT_EXTERN NSString *const NSWorkspaceApplicationKey, *const NSWorkspaceVolumeURLKey;

// Pasteboards
typedef NSString *NSPasteboardType;
APPKIT_EXTERN NSPasteboardType const NSPasteboardTypeString;
@interface NSPasteboard : NSObject
@property (class, readonly, strong) NSPasteboard *generalPasteboard;
- (NSInteger)clearContents;
- (BOOL)setString:(NSString *)string forType:(NSPasteboardType)dataType;
- (nullable NSString *)stringForType:(NSPasteboardType)dataType;
@end

// Alerts
typedef NS_ENUM(NSUInteger, NSAlertStyle) { NSAlertStyleWarning = 0, NSAlertStyleInformational = 1, NSAlertStyleCritical = 2 };
static const NSModalResponse NSAlertFirstButtonReturn = 1000, NSAlertSecondButtonReturn = 1001, NSAlertThirdButtonReturn = 1002;
static const NSModalResponse NSModalResponseStop = -1000, NSModalResponseAbort = -1001, NSModalResponseContinue = -1002;
static const NSModalResponse NSModalResponseOK = 1, NSModalResponseCancel = 0;
@interface NSAlert : NSObject
+ (NSAlert *)alertWithError:(NSError *)error;
@property (copy) NSString *messageText, *informativeText;
@property (null_unspecified, strong) NSImage *icon;
@property NSAlertStyle alertStyle;
@property (nullable, strong) NSView *accessoryView;
@property (readonly, strong) NSWindow *window;
@property (readonly, copy) NSArray<NSButton *> *buttons;
- (NSButton *)addButtonWithTitle:(NSString *)title;
- (NSModalResponse)runModal;
- (void)beginSheetModalForWindow:(NSWindow *)sheetWindow completionHandler:(void (^_Nullable)(NSModalResponse returnCode))handler;
@end
NS_ASSUME_NONNULL_END
SDK_IN_13_END
