#include "platform/BackgroundQueue.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

namespace vantry {

namespace {

// Only reached by a queue that is broken.
constexpr std::chrono::seconds patience{20};

/// Opens for good; whoever waits holds a share of it, as a block may outlive the test that made it.
class Gate {
public:
    void open() {
        const std::scoped_lock lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }
    [[nodiscard]] bool waitUntilOpen() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, patience, [this] { return open_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
};

} // namespace

TEST(BackgroundQueue, RunsABlockOfEitherQualityOffTheCallersThread) {
    const auto queue = makeBackgroundQueue();
    for (const auto quality : {QualityOfService::utility, QualityOfService::userInitiated}) {
        const auto answer = std::make_shared<std::promise<std::thread::id>>();
        auto thread = answer->get_future();
        queue->submit(quality, [answer] { answer->set_value(std::this_thread::get_id()); });
        ASSERT_EQ(thread.wait_for(patience), std::future_status::ready);
        EXPECT_NE(thread.get(), std::this_thread::get_id());
    }
}

TEST(BackgroundQueue, RunsSeveralBlocksAtOnce) {
    // Each block ends only when all of them have begun.
    struct Meeting {
        std::mutex mutex;
        std::condition_variable changed;
        int present = 0;
    };
    constexpr int blocks = 8;
    const auto queue = makeBackgroundQueue();
    const auto meeting = std::make_shared<Meeting>();
    std::array<std::future<bool>, blocks> met;
    for (auto& answer : met) {
        const auto promise = std::make_shared<std::promise<bool>>();
        answer = promise->get_future();
        queue->submit(QualityOfService::userInitiated, [meeting, promise] {
            std::unique_lock lock(meeting->mutex);
            ++meeting->present;
            meeting->changed.notify_all();
            promise->set_value(meeting->changed.wait_for(lock, patience, [&] { return meeting->present == blocks; }));
        });
    }
    for (auto& answer : met)
        EXPECT_TRUE(answer.get());
}

TEST(BackgroundQueue, IsDestroyedAtOnceWhileABlockRuns) {
    const auto gate = std::make_shared<Gate>();
    const auto begun = std::make_shared<Gate>();
    const auto promise = std::make_shared<std::promise<bool>>();
    auto ended = promise->get_future();
    {
        const auto queue = makeBackgroundQueue();
        queue->submit(QualityOfService::utility, [gate, begun, promise] {
            begun->open();
            promise->set_value(gate->waitUntilOpen());
        });
        ASSERT_TRUE(begun->waitUntilOpen());
    }
    // If the destructor had waited for the block, the block would have timed out by now.
    gate->open();
    EXPECT_TRUE(ended.get());
}

TEST(BackgroundQueue, AWaitingBlockStillRunsAfterTheQueueIsDestroyed) {
    const auto promise = std::make_shared<std::promise<void>>();
    auto ran = promise->get_future();
    makeBackgroundQueue()->submit(QualityOfService::userInitiated, [promise] { promise->set_value(); });
    EXPECT_EQ(ran.wait_for(patience), std::future_status::ready);
}

TEST(BackgroundQueue, DestroysABlockAfterItHasRun) {
    const auto queue = makeBackgroundQueue();
    auto freed = std::make_shared<std::promise<void>>();
    auto gone = freed->get_future();
    // The deleter runs with the last share of the captured value.
    auto captured = std::shared_ptr<int>(new int(0), [freed](const int* value) {
        delete value;
        freed->set_value();
    });
    queue->submit(QualityOfService::utility, [captured] { (void)captured; });
    captured.reset();
    EXPECT_EQ(gone.wait_for(patience), std::future_status::ready);
}

} // namespace vantry
