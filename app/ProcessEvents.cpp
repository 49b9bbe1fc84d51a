#include "app/ProcessEvents.h"

#include <chrono>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

void answer(AppDelegate& delegate, InstanceRequest request) {
    switch (request) {
    case InstanceRequest::showPopover: delegate.showPopover(); break;
    case InstanceRequest::showCleanup: delegate.showCleanupWindow(); break;
    }
}

} // namespace

ProcessEvents::ProcessEvents(MainQueue& queue, Shell& shell, std::weak_ptr<AppDelegate> delegate,
                             std::unique_ptr<SingleInstance> instance, int terminationDescriptor)
    : delegate_(std::move(delegate)),
      instance_(std::move(instance)) {
    if (instance_) {
        touching_ = queue.repeatEvery(std::chrono::hours(1), [instance = instance_.get()] { instance->touch(); });
        requests_ = queue.whenReadable(instance_->descriptor(), [from = instance_.get(), delegate = delegate_] {
            const auto target = delegate.lock();
            while (const auto request = from->receive())
                if (target)
                    answer(*target, *request);
        });
    }
    if (terminationDescriptor >= 0)
        termination_ = queue.whenReadable(terminationDescriptor, [terminationDescriptor, &shell] {
            char signal = 0;
            [[maybe_unused]] const auto length = read(terminationDescriptor, &signal, 1);
            shell.terminate();
        });
}

void ProcessEvents::applicationWillTerminate() {
    requests_.reset();
    touching_.reset();
    instance_.reset();
    if (const auto target = delegate_.lock())
        target->applicationWillTerminate();
}

} // namespace vantry
