#pragma once

#include "app/AppDelegate.h"
#include "app/SingleInstance.h"

#include <memory>

namespace vantry {

/// Connects what reaches the process from outside with the application: later starts open the popover or the cleanup
/// window, a termination signal ends the event loop. Does so until it is destroyed. Main thread.
class ProcessEvents {
public:
    /// `instance` may be null; `terminationDescriptor` is -1 where signals are not caught.
    ProcessEvents(MainQueue& queue, Shell& shell, std::weak_ptr<AppDelegate> delegate,
                  std::unique_ptr<SingleInstance> instance, int terminationDescriptor);

private:
    std::unique_ptr<SingleInstance> instance_;
    std::unique_ptr<Subscription> requests_;
    std::unique_ptr<Subscription> touching_;
    std::unique_ptr<Subscription> termination_;
};

} // namespace vantry
