#pragma once

#include <functional>
#include <memory>

namespace vantry {

/// How urgent work is to the user: `utility` is a refresh nobody waits for, `userInitiated` what they just asked for.
enum class QualityOfService { utility, userInitiated };

/// Runs blocks away from the main thread, several at once. A result comes back by one post to the `MainQueue`.
class BackgroundQueue {
public:
    virtual ~BackgroundQueue() = default;

    /// Runs `block` soon on a thread of its own choosing. Any thread. A process that cannot get a thread runs it at
    /// once on the caller's, rather than never.
    virtual void submit(QualityOfService quality, std::function<void()> block) = 0;
};

/// The system's own queue: dispatch queues on macOS, threads elsewhere. Destroying it waits for nothing, so that work
/// stuck in a hung file system cannot keep the application from quitting; what a block uses must not depend on the
/// queue's owner.
[[nodiscard]] std::unique_ptr<BackgroundQueue> makeBackgroundQueue();

} // namespace vantry
