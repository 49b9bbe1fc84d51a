#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vantry {

/// A timer, an observer or a watched descriptor. Its destructor ends it. Main thread.
class Subscription {
public:
    Subscription() = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    virtual ~Subscription() = default;
};

/// The main thread's event loop.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Runs `block` on the main thread in a later turn of the loop, in the order of posting. Any thread. A block posted
    /// after the loop has ended is dropped.
    virtual void post(std::function<void()> block) = 0;

    /// Runs `block` every `interval`, also while a menu is open, until the result is destroyed. Main thread.
    [[nodiscard]] virtual std::unique_ptr<Subscription> repeatEvery(std::chrono::milliseconds interval,
                                                                    std::function<void()> block) = 0;

    /// Runs `block` whenever `fd` has something to read, until the result is destroyed; `fd` stays the caller's.
    /// Main thread.
    [[nodiscard]] virtual std::unique_ptr<Subscription> whenReadable(int fd, std::function<void()> block) = 0;
};

} // namespace vantry
