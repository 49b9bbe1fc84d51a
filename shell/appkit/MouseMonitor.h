#pragma once

#include <AppKit/AppKit.h>
#include <functional>

namespace vantry {

/// During its lifetime, reports mouse events of this application, which still gets them, and of other applications,
/// whose events have no window. NSEvent's monitors need no permission for the mouse. Main thread.
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

/// Whether the pointer is over `view`.
[[nodiscard]] bool pointerIsOver(NSView* view);

} // namespace vantry
