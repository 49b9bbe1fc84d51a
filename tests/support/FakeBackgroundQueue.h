#pragma once

#include "platform/BackgroundQueue.h"
#include "tests/support/FakeCallLog.h"

#include <deque>
#include <utility>

namespace vantry {

/// A background queue. The test runs its blocks on its own thread, in order.
class FakeBackgroundQueue : public BackgroundQueue {
public:
    explicit FakeBackgroundQueue(std::shared_ptr<FakeCallLog> log) : log_(std::move(log)) {}

    void submit(QualityOfService quality, std::function<void()> block) override {
        log_->add(quality == QualityOfService::utility ? "backgroundQueue.submit utility"
                                                       : "backgroundQueue.submit userInitiated");
        blocks_.push_back(std::move(block));
    }

    [[nodiscard]] std::size_t waitingCount() const { return blocks_.size(); }

    /// Runs one block; false when none waits.
    bool runNext() { return run(0); }

    /// The same for the block that came after `index` others that still wait.
    bool run(std::size_t index) {
        if (index >= blocks_.size())
            return false;
        const auto block = std::move(blocks_[index]);
        blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(index));
        block();
        return true;
    }

private:
    std::shared_ptr<FakeCallLog> log_;
    std::deque<std::function<void()>> blocks_;
};

} // namespace vantry
