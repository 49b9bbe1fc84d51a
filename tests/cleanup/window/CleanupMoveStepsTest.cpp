#include "tests/cleanup/window/CleanupWindowFixture.h"

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A stage of a move at which something else is tried.
struct Step {
    const char* name;
    int blocks; ///< how many blocks of both queues have run since the button was pressed
    bool confirmed;
    bool asks;
};

class CleanupMoveSteps : public CleanupMove, public testing::WithParamInterface<Step> {
protected:
    void goThere() {
        openWithThreeLogs();
        tick("/l/a");
        controller->trashPressed();
        const auto run = [this](int blocks) {
            for (int block = 0; block < blocks; ++block)
                ASSERT_TRUE(backgroundQueue->runNext() || mainQueue->runNext());
        };
        if (GetParam().confirmed) {
            run(2);
            answer(AlertAnswer::first);
        }
        run(GetParam().blocks);
        ASSERT_EQ(shell.alert.has_value(), GetParam().asks);
        log.clear();
    }
};

class CleanupMoveStepsBeforeTheMove : public CleanupMoveSteps {};
class CleanupMoveStepsOfACheck : public CleanupMoveSteps {};
class CleanupMoveStepsThatEscapeLeavesAlone : public CleanupMoveSteps {};

TEST_P(CleanupMoveSteps, NoScanAndNoSecondMoveCanStart) {
    goThere();
    const auto waiting = backgroundQueue->waitingCount() + mainQueue->postedCount();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_FALSE(shown().trashButton.enabled || shown().scanButton.enabled || shown().selectSuggestedButton.enabled);
    log.clear();
    controller->scan();
    controller->scanPressed();
    controller->trashPressed();
    EXPECT_THAT(log.calls(), IsEmpty());
    controller->showAndScan();
    EXPECT_THAT(log.calls(), ElementsAre("shell.showCleanupWindow"));
    EXPECT_EQ(backgroundQueue->waitingCount() + mainQueue->postedCount(), waiting);
}

TEST_P(CleanupMoveSteps, TheSelectionCannotChange) {
    goThere();
    EXPECT_FALSE(shown().selectionEnabled);
    tick("/l/b");
    tick("/l/a", false);
    controller->selectSuggestedPressed();
    EXPECT_THAT(log.calls(), IsEmpty());
    EXPECT_EQ(shown().selectionLabel, "1 selected · 1 MB will move to Trash");
    settle();
    if (!GetParam().confirmed)
        answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(recorded(), ElementsAre("/l/a"));
    EXPECT_THAT(rows(), ElementsAre("b", "c", "cache"));
    EXPECT_EQ(shown().statusLabel, "Moved 1 item to the Trash · a privacy-safe local record was saved");
    EXPECT_TRUE(shown().selectionEnabled);
}

TEST_P(CleanupMoveSteps, NothingIsDoneOnceTheControllerIsGone) {
    goThere();
    const std::weak_ptr<CleanupWindowController> last = controller;
    controller.reset();
    ASSERT_TRUE(last.expired()) << "nothing keeps it";
    settle();
    if (shell.answer)
        answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(log.only({"shell.", "cleanup."}), IsEmpty());
}

TEST_P(CleanupMoveStepsBeforeTheMove, AWindowThatIsClosedMovesNothing) {
    goThere();
    shell.cleanupWindowShown = false;
    controller->windowClosed();
    if (shell.answer)
        answer(AlertAnswer::last); // as the front end does when its window is closed
    settle();
    EXPECT_THAT(log.only({"cleanup.coordinate", "cleanup.move", "shell.ask"}), IsEmpty());
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    EXPECT_THAT(rows(), ElementsAre("a selected", "b", "c", "cache"));
}

// A check that hangs must not block the window for ever.
TEST_P(CleanupMoveStepsOfACheck, EscapeAndClosingTheWindowCancelIt) {
    for (const bool byEscape : {true, false}) {
        goThere();
        if (byEscape)
            controller->cancelPressed();
        else
            controller->windowClosed();
        EXPECT_EQ(enabledButtons(), "scan select trash ") << "at once";
        EXPECT_TRUE(shown().selectionEnabled);
        EXPECT_EQ(shown().statusLabel, summary);
        tick("/l/b");
        controller->trashPressed();
        log.clear();
        if (GetParam().blocks == 0)
            backgroundQueue->runNext();
        mainQueue->runNext();
        EXPECT_EQ(enabledButtons(), "busy") << "the answer to the first check is not one to the second";
        settle();
        EXPECT_THAT(log.only({"shell.ask"}), ElementsAre("shell.ask Move 2 selected items to the Trash?"));
        answer(AlertAnswer::last);
        EXPECT_EQ(log.count("cleanup.move"), 0);
    }
}

const std::vector<Step> stepsOfACheck{{"checking", 0, false, false},
                                      {"checked", 1, false, false},
                                      {"checkingAgain", 0, true, false},
                                      {"checkedAgain", 1, true, false}};
const Step asking{"asking", 2, false, true};
const std::vector<Step> stepsOfTheMove{{"moving", 2, true, false}, {"moved", 3, true, false}};
const auto nameOf = [](const auto& step) { return step.param.name; };

TEST_P(CleanupMoveStepsThatEscapeLeavesAlone, EscapeDoesNothingToASheetOrAMove) {
    goThere();
    const auto before = shown();
    controller->cancelPressed();
    controller->windowClosed();
    EXPECT_EQ(shown(), before);
    EXPECT_THAT(log.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Check, CleanupMoveSteps, testing::ValuesIn(stepsOfACheck), nameOf);
INSTANTIATE_TEST_SUITE_P(Sheet, CleanupMoveSteps, testing::Values(asking), nameOf);
INSTANTIATE_TEST_SUITE_P(Move, CleanupMoveSteps, testing::ValuesIn(stepsOfTheMove), nameOf);
INSTANTIATE_TEST_SUITE_P(Check, CleanupMoveStepsBeforeTheMove, testing::ValuesIn(stepsOfACheck), nameOf);
INSTANTIATE_TEST_SUITE_P(Sheet, CleanupMoveStepsBeforeTheMove, testing::Values(asking), nameOf);
INSTANTIATE_TEST_SUITE_P(, CleanupMoveStepsOfACheck, testing::ValuesIn(stepsOfACheck), nameOf);
INSTANTIATE_TEST_SUITE_P(Sheet, CleanupMoveStepsThatEscapeLeavesAlone, testing::Values(asking), nameOf);
INSTANTIATE_TEST_SUITE_P(Move, CleanupMoveStepsThatEscapeLeavesAlone, testing::ValuesIn(stepsOfTheMove), nameOf);

} // namespace

} // namespace vantry
