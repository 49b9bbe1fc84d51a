#include "shell/appkit/KeyGuard.h"

#include <algorithm>
#include <array>

namespace vantry {

namespace {

// Virtual key codes, independent of the keyboard layout (HIToolbox/Events.h).
constexpr unsigned short returnKey = 36;
constexpr unsigned short enterKey = 76;
constexpr unsigned short spaceKey = 49;
constexpr unsigned short escapeKey = 53;
constexpr unsigned short pageUpKey = 116;
constexpr unsigned short pageDownKey = 121;
constexpr std::array guardedKeys{returnKey, enterKey, spaceKey, escapeKey};

bool isRepetition(NSEvent* event) {
    return event.isARepeat && std::ranges::find(guardedKeys, event.keyCode) != guardedKeys.end();
}

} // namespace

bool isCloseShortcut(NSEvent* event) {
    const NSEventModifierFlags modifiers = event.modifierFlags & NSEventModifierFlagDeviceIndependentFlagsMask;
    return (modifiers & ~static_cast<NSEventModifierFlags>(NSEventModifierFlagCapsLock)) ==
               NSEventModifierFlagCommand &&
           [event.charactersIgnoringModifiers.lowercaseString isEqualToString:@"w"];
}

int pagesToScroll(NSEvent* event) { return event.keyCode == pageUpKey ? -1 : event.keyCode == pageDownKey ? 1 : 0; }

bool pressFocusedButton(NSEvent* event, NSWindow* window) {
    NSResponder* responder = window.firstResponder;
    if ((event.keyCode != returnKey && event.keyCode != enterKey) || ![responder isKindOfClass:[NSButton class]])
        return false;
    [static_cast<NSButton*>(responder) performClick:nil];
    return true;
}

KeyGuard::KeyGuard()
    : monitor_([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                     handler:^NSEvent*(NSEvent* event) {
                                                         return isRepetition(event) ? nil : event;
                                                     }]) {}

KeyGuard::~KeyGuard() {
    if (monitor_)
        [NSEvent removeMonitor:monitor_];
}

} // namespace vantry
