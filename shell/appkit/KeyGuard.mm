#include "shell/appkit/KeyGuard.h"

#include <AppKit/AppKit.h>
#include <algorithm>
#include <array>

namespace vantry {

namespace {

constexpr std::array<unsigned short, 4> guardedKeys{36, 76, 49,
                                                    53}; // Return, Enter, Space, Escape, whatever the layout

bool isRepetition(NSEvent* event) {
    return event.isARepeat && std::ranges::find(guardedKeys, event.keyCode) != guardedKeys.end();
}

} // namespace

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
