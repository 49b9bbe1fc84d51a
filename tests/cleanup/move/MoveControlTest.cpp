#include "cleanup/move/MoveControl.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace vantry {

namespace {

constexpr std::chrono::hours forEver{1};

TEST(MoveControl, StoppingWaitsUntilTheMoveHasEnded) {
    MoveControl control;
    ASSERT_TRUE(control.begin());
    std::atomic<bool> recordIsWritten = false;
    std::thread mover([&] {
        while (!control.isStopped())
            std::this_thread::yield();
        recordIsWritten = true;
        control.end();
    });
    control.stop(forEver);
    EXPECT_TRUE(recordIsWritten);
    mover.join();
}

TEST(MoveControl, StoppingWaitsNoLongerThanAllowed) {
    MoveControl control;
    ASSERT_TRUE(control.begin());
    control.stop(std::chrono::milliseconds(1)); // the move never ends
    EXPECT_TRUE(control.isStopped());
}

TEST(MoveControl, StoppingDoesNotWaitForAMoveThatHasNotBegunOrHasEnded) {
    MoveControl ended;
    ASSERT_TRUE(ended.begin());
    ended.end();
    ended.stop(forEver);
    MoveControl waiting;
    waiting.stop(forEver);
    EXPECT_FALSE(waiting.begin()) << "and it does not begin afterwards";
    waiting.stop(forEver);
}

} // namespace

} // namespace vantry
