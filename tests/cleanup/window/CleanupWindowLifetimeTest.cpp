#include "tests/cleanup/window/CleanupWindowFixture.h"

namespace vantry {

namespace {

using testing::IsEmpty;

// Blocks that a deleted controller leaves in the queues do nothing and do not keep it alive. The steps of a move are in
// CleanupMoveStepsTest.cpp.
class CleanupWindowLifetime : public CleanupWindowFixture {
protected:
    void destroy() {
        const std::weak_ptr<CleanupWindowController> last = controller;
        controller.reset();
        ASSERT_TRUE(last.expired());
        log.clear();
    }
};

TEST_F(CleanupWindowLifetime, AScanThatHasNotBegunDoesNotBegin) {
    controller->showAndScan();
    destroy();
    settle();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(CleanupWindowLifetime, TheEndOfTheProcessEndsAScan) {
    controller->showAndScan();
    log.clear();
    controller->applicationWillTerminate();
    EXPECT_THAT(log.calls(), testing::ElementsAre("cleanup.stopScanning"));
}

TEST_F(CleanupWindowLifetime, NothingMovesAnyMoreWhileTheEndOfTheProcessEndsAScan) {
    auto services = disk.services();
    services.stopScanning = [this] { backgroundQueue->runNext(); };
    controller = std::make_shared<CleanupWindowController>(shell, mainQueue, backgroundQueue, workspace, services);
    openWith({logAt("/l/a")});
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    backgroundQueue->runNext();
    mainQueue->runNext();
    ASSERT_EQ(backgroundQueue->waitingCount(), 1) << "the move";
    controller->applicationWillTerminate();
    EXPECT_EQ(backgroundQueue->waitingCount(), 0);
    EXPECT_EQ(log.count("cleanup.move"), 0);
}

TEST_F(CleanupWindowLifetime, AScanThatHasEndedShowsNothing) {
    controller->showAndScan();
    backgroundQueue->runNext();
    ASSERT_EQ(mainQueue->postedCount(), 1);
    destroy();
    settle();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(CleanupWindowLifetime, AControllerMayGoDuringItsScan) {
    disk.report = reportOf({logAt("/l/a")});
    auto services = disk.services();
    services.scan = [this](std::span<const std::string>) {
        controller.reset();
        return disk.report;
    };
    controller = std::make_shared<CleanupWindowController>(shell, mainQueue, backgroundQueue, workspace, services);
    controller->showAndScan();
    log.clear();
    settle();
    EXPECT_THAT(log.only({"shell."}), IsEmpty());
}

TEST_F(CleanupWindowLifetime, AMoveContinuesAndIsRecordedWhenItsControllerGoes) {
    auto services = disk.services();
    services.move.moveValidated = [this, move = services.move.moveValidated](const CleanupCandidate& candidate) {
        controller.reset();
        return move(candidate);
    };
    controller = std::make_shared<CleanupWindowController>(shell, mainQueue, backgroundQueue, workspace, services);
    openWith({logAt("/l/a"), logAt("/l/b")});
    askToMove({"/l/a", "/l/b"});
    answer(AlertAnswer::first);
    log.clear();
    settle();
    EXPECT_EQ(log.count("cleanup.move"), 2);
    EXPECT_EQ(disk.recorded().size(), 2);
    EXPECT_THAT(log.only({"shell.renderCleanupWindow", "shell.ask"}).size(), testing::Le(1)) << "the moving state";
}

TEST_F(CleanupWindowLifetime, AnAnswerToASheetDoesNothingOnceTheControllerIsGone) {
    openWith({logAt("/l/a")});
    askToMove({"/l/a"});
    destroy();
    for (const auto button : {AlertAnswer::first, AlertAnswer::last})
        shell.answer(button);
    settle();
    EXPECT_THAT(log.calls(), IsEmpty());
}

} // namespace

} // namespace vantry
