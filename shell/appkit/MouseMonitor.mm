#include "shell/appkit/MouseMonitor.h"

#include <utility>

namespace vantry {

MouseMonitor::MouseMonitor(NSEventMask events, std::function<void(NSEvent*)> seen)
    : ours_([NSEvent addLocalMonitorForEventsMatchingMask:events
                                                  handler:^NSEvent*(NSEvent* event) {
                                                      const auto called =
                                                          seen; // a copy, because the call may destroy the monitor
                                                      called(event);
                                                      return event;
                                                  }]),
      others_([NSEvent addGlobalMonitorForEventsMatchingMask:events
                                                     handler:^(NSEvent* event) {
                                                         const auto called = seen;
                                                         called(event);
                                                     }]) {}

MouseMonitor::~MouseMonitor() {
    for (id monitor : {ours_, others_})
        if (monitor)
            [NSEvent removeMonitor:monitor];
}

bool pointerIsOver(NSView* view) {
    if (!view.window)
        return false;
    const NSRect place = [view.window convertRectToScreen:[view convertRect:view.bounds toView:nil]];
    return NSPointInRect(NSEvent.mouseLocation, place);
}

} // namespace vantry
