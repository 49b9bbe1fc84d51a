#pragma once

#include <functional>
#include <memory>

namespace vantry {

/// How urgent work is to the user: `utility` is a refresh that nobody waits for, `userInitiated` something they just
/// asked for.
enum class QualityOfService { utility, userInitiated };

/// Runs blocks away from the main thread, several at once. A result comes back by one post to the `MainQueue`.
class BackgroundQueue {
public:
    virtual ~BackgroundQueue() = default;

    /// Runs `block` soon on a thread of its own choosing. Any thread. If no thread can be started, it runs at
    /// once on the caller's.
    virtual void submit(QualityOfService quality, std::function<void()> block) = 0;
};

/// The system's own queue: dispatch queues on macOS, threads elsewhere. Its destructor waits for nothing, so that work
/// in a hung file system cannot keep the application from quitting; a block must not use anything that the owner of the
/// queue destroys.
[[nodiscard]] std::unique_ptr<BackgroundQueue> makeBackgroundQueue();

} // namespace vantry
