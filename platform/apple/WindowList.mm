#include "platform/apple/Services.h"

#include "platform/apple/FoundationValues.h"

#include <ApplicationServices/ApplicationServices.h>
#include <Foundation/Foundation.h>

namespace vantry {

namespace {

int numberIn(NSDictionary<NSString*, id>* window, CFStringRef key) {
    id value = [window objectForKey:(__bridge NSString*)key];
    return [value isKindOfClass:[NSNumber class]] ? static_cast<NSNumber*>(value).intValue : 0;
}

std::string textIn(NSDictionary<NSString*, id>* window, CFStringRef key) {
    id value = [window objectForKey:(__bridge NSString*)key];
    return [value isKindOfClass:[NSString class]] ? textFromFoundation(value) : std::string();
}

Rect boundsOf(NSDictionary<NSString*, id>* window) {
    id value = [window objectForKey:(__bridge NSString*)kCGWindowBounds];
    CGRect bounds = CGRectZero;
    if ([value isKindOfClass:[NSDictionary class]])
        CGRectMakeWithDictionaryRepresentation((__bridge CFDictionaryRef)value, &bounds);
    return {bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height};
}

class AppleWindowList : public WindowList {
public:
    std::vector<WindowInfo> onScreenWindows() const override {
        @autoreleasepool {
            NSArray<NSDictionary<NSString*, id>*>* list =
                CFBridgingRelease(CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly, kCGNullWindowID));
            std::vector<WindowInfo> windows;
            for (NSDictionary<NSString*, id>* window in list)
                windows.push_back({textIn(window, kCGWindowOwnerName), numberIn(window, kCGWindowOwnerPID),
                                   boundsOf(window), numberIn(window, kCGWindowLayer)});
            return windows;
        }
    }
};

} // namespace

std::shared_ptr<const WindowList> makeWindowList() { return std::make_shared<AppleWindowList>(); }

} // namespace vantry
