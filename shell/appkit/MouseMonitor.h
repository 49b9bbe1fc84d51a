#pragma once

#include <AppKit/AppKit.h>
#include <functional>

namespace vantry {

/// As long as it lives, tells of mouse events wherever they go: to this application, which still gets them, or to
/// another one, whose events have no window. Needs no permission for the mouse (NSEvent's monitors). Main thread.
class MouseMonitor {
public:
    MouseMonitor(NSEventMask events, std::function<void(NSEvent*)> seen);
    MouseMonitor(const MouseMonitor&) = delete;
    MouseMonitor& operator=(const MouseMonitor&) = delete;
    ~MouseMonitor();

private:
    id ours_;
    id others_;
};

/// Whether the pointer is over `view`, wherever the view's window is shown.
[[nodiscard]] bool pointerIsOver(NSView* view);

} // namespace vantry
