#include "tests/app/AppDelegateFixture.h"

namespace vantry {

namespace {

using testing::IsEmpty;

// Blocks that are posted, scheduled, observed or submitted may run after the delegate is gone. They do nothing then,
// and they do not keep the delegate alive.
class AppDelegateLifetime : public AppDelegateFixture {
protected:
    /// Destroys the delegate, which nothing else may own, and clears the log.
    void destroy() {
        const std::weak_ptr<AppDelegate> last = delegate;
        delegate.reset();
        ASSERT_TRUE(last.expired());
        log.clear();
    }

    void expectNothingShown() const { EXPECT_THAT(log.only({"shell.", "cleanup.", "loginItem."}), IsEmpty()); }
};

TEST_F(AppDelegateLifetime, EndsItsTimerAndItsObserver) {
    launchAndSettle();
    delegate.reset();
    EXPECT_THAT(log.only({"mainQueue.", "workspace."}),
                testing::UnorderedElementsAre("mainQueue.stopTimer", "workspace.stopObservingWake"));
}

TEST_F(AppDelegateLifetime, AReadThatHasNotStartedDoesNothing) {
    launchAndSettle();
    delegate->refreshStorage();
    destroy();
    world.settle();
    expectNothingShown();
    EXPECT_EQ(log.count("volume."), 0);
}

TEST_F(AppDelegateLifetime, AReadThatHasEndedDoesNothing) {
    for (const StorageReadResult& result :
         {world.volume, StorageReadResult(std::unexpected(StorageReadFailure{StorageReadError::missingCapacity}))}) {
        world.volume = result;
        launchAndSettle();
        delegate->refreshStorage();
        world.backgroundQueue->runNext();
        ASSERT_EQ(world.mainQueue->postedCount(), 1);
        destroy();
        world.mainQueue->runNext();
        EXPECT_THAT(log.calls(), IsEmpty());
    }
}

TEST_F(AppDelegateLifetime, ASamplingDoesNothingWhicheverStepItHasReached) {
    for (int stepsBefore = 0; stepsBefore <= 3; ++stepsBefore) {
        SCOPED_TRACE(stepsBefore);
        launchAndSettle();
        delegate->refreshWallpaperTheme(true);
        for (int step = 0; step < stepsBefore; ++step)
            ASSERT_TRUE(world.backgroundQueue->runNext() || world.mainQueue->runNext());
        ASSERT_EQ(world.backgroundQueue->waitingCount() + world.mainQueue->postedCount(), 1);
        destroy();
        world.settle();
        expectNothingShown();
    }
}

TEST_F(AppDelegateLifetime, TheCleanupWindowIsNotShown) {
    world.arguments = {"--show-cleanup"};
    launch();
    ASSERT_EQ(world.mainQueue->postedCount(), 1);
    destroy();
    world.mainQueue->runNext();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppDelegateLifetime, APendingTickDoesNothing) {
    launchAndSettle();
    const auto tick = world.mainQueue->lastTimerBlock();
    destroy();
    tick();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppDelegateLifetime, APendingWakeDoesNothing) {
    launchAndSettle();
    const auto wake = world.workspace->wakeBlock();
    destroy();
    wake();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppDelegateLifetime, ResultsThatArriveAfterTerminationAreStillHandled) {
    launch();
    delegate->applicationWillTerminate();
    world.settle();
    EXPECT_EQ(shell.statusItem().tooltip, "Data: 300 GB used, 200 GB available");
}

} // namespace

} // namespace vantry
