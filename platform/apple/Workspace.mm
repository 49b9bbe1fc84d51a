#include "platform/apple/Services.h"

#include "platform/ItemFacts.h"
#include "platform/apple/FoundationValues.h"

#include <AppKit/AppKit.h>
#include <dispatch/dispatch.h>
#include <utility>

namespace vantry {

namespace {

using Block = std::function<void()>;

class WakeSubscription : public Subscription {
public:
    explicit WakeSubscription(Block block) : block_(std::make_shared<Block>(std::move(block))) {
        const std::weak_ptr<Block> weakBlock = block_;
        observer_ = [notificationCenter() addObserverForName:NSWorkspaceDidWakeNotification
                                                      object:nil
                                                       queue:[NSOperationQueue mainQueue]
                                                  usingBlock:^(NSNotification*) {
                                                      // Keeps the block alive while it runs: it may end its own
                                                      // subscription.
                                                      if (const auto held = weakBlock.lock())
                                                          (*held)();
                                                  }];
    }
    ~WakeSubscription() override {
        @autoreleasepool {
            [notificationCenter() removeObserver:observer_];
        }
    }

private:
    static NSNotificationCenter* notificationCenter() { return [[NSWorkspace sharedWorkspace] notificationCenter]; }

    std::shared_ptr<Block> block_;
    id<NSObject> observer_ = nil;
};

// In AppKit y grows upwards from the bottom of the first screen.
Rect frameFromTop(NSRect frame, NSArray<NSScreen*>* screens) {
    const CGFloat top = NSMaxY(screens.firstObject.frame);
    return {NSMinX(frame), top - NSMaxY(frame), NSWidth(frame), NSHeight(frame)};
}

NSURL* urlFromText(const std::string& url) {
    NSString* text = foundationText(url);
    return text ? [NSURL URLWithString:text] : nil;
}

NSURL* urlFromPath(const std::filesystem::path& path) {
    return [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
}

// Never prompts the user and never waits. `onFailure`, if given, is called on the main thread.
void open(NSURL* url, void (^onFailure)() = nil) {
    if (!url) {
        if (onFailure)
            onFailure();
        return;
    }
    NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
    configuration.promptsUserIfNeeded = NO;
    // The completion handler runs on a thread of the system.
    [[NSWorkspace sharedWorkspace] openURL:url
                             configuration:configuration
                         completionHandler:^(NSRunningApplication*, NSError* error) {
                             if (error && onFailure)
                                 dispatch_async(dispatch_get_main_queue(), onFailure);
                         }];
}

class AppleWorkspace : public Workspace {
public:
    std::unique_ptr<Subscription> observeWake(Block block) override {
        @autoreleasepool {
            return std::make_unique<WakeSubscription>(std::move(block));
        }
    }
    void openURL(const std::string& url) override {
        @autoreleasepool {
            open(urlFromText(url));
        }
    }
    // Launch Services finds the application when it opens the URL.
    bool canOpenURL(const std::string& /*url*/) const override { return true; }

    void openSettingsPane(const std::string& url) override {
        @autoreleasepool {
            open(urlFromText(url), ^{
                open(urlFromPath("/System/Applications/System Settings.app"));
            });
        }
    }
    void openItem(const std::filesystem::path& path) override {
        @autoreleasepool {
            open(urlFromPath(path));
        }
    }
    bool canOpenItem(const std::filesystem::path& path) const override {
        return folderAccess(path) != FolderAccess::none; // an application is a folder too
    }
    void copyText(const std::string& text) override {
        @autoreleasepool {
            NSString* copied = foundationText(text);
            if (!copied)
                return;
            [[NSPasteboard generalPasteboard] clearContents];
            [[NSPasteboard generalPasteboard] setString:copied forType:NSPasteboardTypeString];
        }
    }
    void revealItem(const std::filesystem::path& path) override {
        @autoreleasepool {
            if (NSURL* url = urlFromPath(path))
                [[NSWorkspace sharedWorkspace] activateFileViewerSelectingURLs:@[ url ]];
        }
    }
    std::vector<std::string> runningBundleIdentifiers() const override {
        @autoreleasepool {
            std::vector<std::string> found;
            for (NSRunningApplication* application in [NSWorkspace sharedWorkspace].runningApplications) {
                if (application.bundleIdentifier)
                    found.push_back(textFromFoundation(application.bundleIdentifier));
            }
            return found;
        }
    }
    std::vector<Screen> screens() const override {
        @autoreleasepool {
            NSArray<NSScreen*>* all = [NSScreen screens];
            std::vector<Screen> found;
            for (NSScreen* screen in all)
                found.push_back({textFromFoundation(screen.localizedName), frameFromTop(screen.frame, all)});
            return found;
        }
    }
    std::optional<Screen> mainScreen() const override {
        @autoreleasepool {
            NSScreen* screen = [NSScreen mainScreen];
            if (!screen)
                return std::nullopt;
            return Screen{textFromFoundation(screen.localizedName), frameFromTop(screen.frame, [NSScreen screens])};
        }
    }
};

} // namespace

std::shared_ptr<Workspace> makeWorkspace() { return std::make_shared<AppleWorkspace>(); }

} // namespace vantry
