#pragma once

#include "platform/MainQueue.h"
#include "tests/support/FakeSubscription.h"

#include <deque>
#include <poll.h>
#include <utility>
#include <vector>

namespace vantry {

/// An event loop that only runs when the test says so. Main thread only.
class FakeMainQueue : public MainQueue {
public:
    explicit FakeMainQueue(std::shared_ptr<FakeCallLog> log) : log_(std::move(log)) {}

    void post(std::function<void()> block) override {
        log_->add("mainQueue.post");
        posted_.push_back(std::move(block));
    }

    std::unique_ptr<Subscription> repeatEvery(std::chrono::milliseconds interval,
                                              std::function<void()> block) override {
        log_->add("mainQueue.repeatEvery " + std::to_string(interval.count()) + " ms");
        timers_.push_back(std::make_shared<FakeRegistration>(std::move(block)));
        return std::make_unique<FakeSubscription>(timers_.back(), log_, "mainQueue.stopTimer");
    }

    std::unique_ptr<Subscription> whenReadable(int fd, std::function<void()> block) override {
        log_->add("mainQueue.whenReadable");
        watched_.emplace_back(fd, std::make_shared<FakeRegistration>(std::move(block)));
        return std::make_unique<FakeSubscription>(watched_.back().second, log_, "mainQueue.stopWatching");
    }

    [[nodiscard]] std::size_t postedCount() const { return posted_.size(); }

    /// A copy of the block that runs next, for a queue that delivers it once more and late.
    [[nodiscard]] std::function<void()> nextBlock() const { return posted_.front(); }

    /// Runs one posted block; false when none waits.
    bool runNext() {
        if (posted_.empty())
            return false;
        const auto block = std::move(posted_.front());
        posted_.pop_front();
        block();
        return true;
    }

    /// Lets every timer that still runs tick once.
    void fireTimers() { fire(timers_); }

    /// Calls the block of every watched descriptor that has something to read; how many these were.
    std::size_t fireReadable() {
        std::vector<std::shared_ptr<FakeRegistration>> readable;
        for (const auto& [fd, registration] : watched_) {
            pollfd request{.fd = fd, .events = POLLIN};
            if (registration->active && poll(&request, 1, 0) == 1 && (request.revents & POLLIN) != 0)
                readable.push_back(registration);
        }
        fire(readable);
        return readable.size();
    }

    /// The block of the last timer, as held by an event that is pending when the timer is stopped.
    [[nodiscard]] std::function<void()> lastTimerBlock() const { return timers_.back()->block; }
    /// The same for the descriptor watched last.
    [[nodiscard]] std::function<void()> lastReadableBlock() const { return watched_.back().second->block; }

private:
    static void fire(const std::vector<std::shared_ptr<FakeRegistration>>& registrations) {
        for (const auto& registration : std::vector(registrations))
            if (registration->active)
                registration->block();
    }

    std::shared_ptr<FakeCallLog> log_;
    std::deque<std::function<void()>> posted_;
    std::vector<std::shared_ptr<FakeRegistration>> timers_;
    std::vector<std::pair<int, std::shared_ptr<FakeRegistration>>> watched_;
};

} // namespace vantry
