#include "platform/apple/Workspace.h"

#include "platform/apple/FoundationValues.h"

#include <AppKit/AppKit.h>
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
                                                      // Locked while it runs: a block may end its own subscription.
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

// AppKit's y grows upwards from the bottom of the first screen.
Rect frameFromTop(NSRect frame, NSArray<NSScreen*>* screens) {
    const CGFloat top = NSMaxY(screens.firstObject.frame);
    return {NSMinX(frame), top - NSMaxY(frame), NSWidth(frame), NSHeight(frame)};
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
            NSString* text = foundationText(url);
            NSURL* target = text ? [NSURL URLWithString:text] : nil;
            if (!target)
                return;
            NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
            configuration.promptsUserIfNeeded = NO;
            [[NSWorkspace sharedWorkspace] openURL:target configuration:configuration completionHandler:nil];
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
