#pragma once

#include "app/AppDelegate.h"
#include "app/SingleInstance.h"

#include <memory>

namespace vantry {

/// Handles events from outside the process: a second start opens the popover or the cleanup window, and a termination
/// signal ends the event loop. Active during its lifetime. Main thread.
class ProcessEvents {
public:
    /// `instance` may be null; `terminationDescriptor` is -1 if signals are not caught.
    ProcessEvents(MainQueue& queue, Shell& shell, std::weak_ptr<AppDelegate> delegate,
                  std::unique_ptr<SingleInstance> instance, int terminationDescriptor);

    /// The process is about to exit, which a running move may delay. Gives up the instance first, so that a start
    /// during the delay becomes the next one, then tells the delegate. May be called more than once.
    void applicationWillTerminate();

private:
    std::weak_ptr<AppDelegate> delegate_;
    std::unique_ptr<SingleInstance> instance_;
    std::unique_ptr<Subscription> requests_;
    std::unique_ptr<Subscription> touching_;
    std::unique_ptr<Subscription> termination_;
};

} // namespace vantry
