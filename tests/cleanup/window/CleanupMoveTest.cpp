#include "tests/cleanup/window/CleanupWindowFixture.h"

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CleanupMove : public CleanupWindowFixture {
protected:
    void openWithThreeLogs() {
        openWith({logAt("/l/a", 1'000'000), logAt("/l/b", 2'000'000), logAt("/l/c", 4'000'000),
                  candidateAt("/c/cache", CleanupCategory::cache)});
        summary = shown().statusLabel;
    }
    std::string summary;
};

TEST_F(CleanupMove, TakesItsStepsInOrder) {
    openWithThreeLogs();
    tick("/l/a");
    tick("/l/c");
    log.clear();

    controller->trashPressed();
    EXPECT_EQ(enabledButtons(), "busy") << "checking";
    EXPECT_EQ(shown().statusLabel, checkingFilesStatus);
    EXPECT_FALSE(shown().selectionEnabled);
    EXPECT_THAT(log.only({"cleanup.", "backgroundQueue.", "shell.ask"}),
                ElementsAre("backgroundQueue.submit userInitiated"));
    log.clear();
    backgroundQueue->runNext();
    EXPECT_THAT(log.calls(), ElementsAre("cleanup.validate /l/a", "cleanup.validate /l/c", "mainQueue.post"));
    log.clear();

    mainQueue->runNext();
    EXPECT_THAT(log.only({"cleanup.", "shell.ask"}), ElementsAre("shell.ask Move 2 selected items to the Trash?"));
    EXPECT_EQ(shell.alert->informativeText,
              "This moves approximately 5 MB to the Trash so it remains recoverable. The space is not actually freed "
              "until you empty the Trash.");
    EXPECT_THAT(shell.alert->buttons, ElementsAre("Move to Trash", "Cancel"));
    EXPECT_EQ(enabledButtons(), "") << "asking";
    EXPECT_EQ(shown().statusLabel, summary);
    EXPECT_FALSE(shown().selectionEnabled);
    log.clear();

    answer(AlertAnswer::first);
    EXPECT_EQ(enabledButtons(), "busy");
    backgroundQueue->runNext();
    EXPECT_THAT(log.only({"cleanup."}), ElementsAre("cleanup.validate /l/a", "cleanup.validate /l/c"));
    log.clear();

    mainQueue->runNext();
    EXPECT_EQ(enabledButtons(), "busy") << "moving";
    EXPECT_FALSE(shown().selectionEnabled);
    EXPECT_EQ(shown().statusLabel, "Moving selected items to the Trash…");
    EXPECT_THAT(log.only({"cleanup.", "backgroundQueue."}), ElementsAre("backgroundQueue.submit userInitiated"));
    log.clear();

    backgroundQueue->runNext();
    EXPECT_THAT(log.calls(), ElementsAre("cleanup.coordinate /l/a", "cleanup.moveToTrash /l/a", "cleanup.saveHistory 1",
                                         "cleanup.coordinate /l/c", "cleanup.moveToTrash /l/c", "cleanup.saveHistory 2",
                                         "cleanup.saveHistory 2 last", "mainQueue.post"));
    EXPECT_EQ(disk.recorded()[0].url, "/l/a");
    EXPECT_EQ(disk.recorded()[1].url, "/l/c");
    log.clear();

    mainQueue->runNext();
    EXPECT_EQ(shown().statusLabel, "Moved 2 items to the Trash · a privacy-safe local record was saved");
    EXPECT_THAT(rows(), ElementsAre("b", "cache"));
    EXPECT_EQ(shown().foundCard.detail, "2 files shown; nothing removed automatically");
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(enabledButtons(), "scan select ");
    EXPECT_TRUE(shown().selectionEnabled);
    EXPECT_THAT(log.calls(), ElementsAre("shell.renderCleanupWindow")) << "and no scan follows by itself";
}

TEST_F(CleanupMove, TheOutcomeStaysTheSummaryUntilTheNextScan) {
    openWithThreeLogs();
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    settle();
    const std::string moved = "Moved 1 item to the Trash · a privacy-safe local record was saved";
    EXPECT_EQ(shown().statusLabel, moved);
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().sections[0].avenues[1].status, "2 files") << "what was moved is not counted";
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_EQ(shown().statusLabel, moved);
    controller->scanPressed();
    settle();
    EXPECT_EQ(shown().statusLabel, summary);
}

TEST_F(CleanupMove, ARecordThatCannotBeWrittenIsNotMentioned) {
    openWithThreeLogs();
    disk.historyCanBeWritten = false;
    askToMove({"/l/a", "/l/b"});
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(shown().statusLabel, "Moved 2 items to the Trash");
    EXPECT_THAT(rows(), ElementsAre("c", "cache"));
}

TEST_F(CleanupMove, NothingHappensWithoutASelection) {
    openWithThreeLogs();
    controller->trashPressed();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(CleanupMove, ACancelledConfirmationChangesNothing) {
    openWithThreeLogs();
    tick("/l/a");
    tick("/l/b");
    const auto before = shown();
    controller->trashPressed();
    settle();
    log.clear();
    answer(AlertAnswer::last);
    settle();
    EXPECT_EQ(shown(), before);
    EXPECT_THAT(log.only({"cleanup."}), IsEmpty());
    controller->trashPressed();
    settle();
    EXPECT_EQ(shell.alert->message, "Move 2 selected items to the Trash?") << "and it can be asked for again";
}

// One path that was found twice: as a log, and as something that may not be moved.
TEST_F(CleanupMove, AProtectedFileInTheSelectionIsBlockedBeforeAnythingElse) {
    openWith({logAt("/l/a"), candidateAt("/l/a", CleanupCategory::largeDownload), logAt("/l/b")});
    tick("/l/a");
    tick("/l/b");
    log.clear();
    controller->trashPressed();
    EXPECT_EQ(shell.alert->message, "Protected files cannot be selected");
    EXPECT_THAT(shell.alert->buttons, ElementsAre("OK"));
    EXPECT_THAT(log.only({"cleanup.", "backgroundQueue."}), IsEmpty());
    EXPECT_EQ(enabledButtons(), "") << "the sheet asks";
    EXPECT_EQ(shown().selectionLabel, "1 selected · 1 KB will move to Trash");
    answer(AlertAnswer::last);
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    EXPECT_THAT(log.only({"cleanup.", "backgroundQueue."}), IsEmpty());

    controller->trashPressed();
    settle();
    EXPECT_EQ(shell.alert->message, "Move 1 selected item to the Trash?") << "what is left may be moved";
}

TEST_F(CleanupMove, NothingButAProtectedFileInTheSelectionIsBlockedToo) {
    openWith({logAt("/l/a"), candidateAt("/l/a", CleanupCategory::deviceBackup)});
    tick("/l/a");
    controller->trashPressed();
    EXPECT_EQ(shell.alert->message, "Protected files cannot be selected");
    answer(AlertAnswer::first);
    EXPECT_EQ(enabledButtons(), "scan select ");
    log.clear();
    controller->trashPressed();
    EXPECT_THAT(log.calls(), IsEmpty()) << "it is out of the selection";
}

TEST_F(CleanupMove, FilesThatChangedSinceTheScanAreListedAndNothingMoves) {
    openWith({logAt("/l/1"), logAt("/l/2"), logAt("/l/3"), logAt("/l/4"), logAt("/l/5"), logAt("/l/6")});
    for (const auto* path : {"/l/1", "/l/2", "/l/4", "/l/5", "/l/6"})
        disk.failures[path] = "it was modified after the scan";
    askToMove({"/l/1", "/l/2", "/l/3", "/l/4", "/l/5", "/l/6"});
    EXPECT_EQ(shell.alert->message, "Some items changed since the scan");
    EXPECT_EQ(shell.alert->informativeText,
              "1: it was modified after the scan\n2: it was modified after the scan\n4: it was modified after the "
              "scan\n5: it was modified after the scan\n\nScan again before moving anything. No items were changed.");
    EXPECT_THAT(shell.alert->buttons, ElementsAre("OK"));
    EXPECT_EQ(log.count("cleanup.validate"), 6);
    answer(AlertAnswer::last);
    settle();
    EXPECT_EQ(log.count("cleanup.moveToTrash"), 0);
    EXPECT_EQ(enabledButtons(), "scan select trash ") << "the selection stays";
    EXPECT_EQ(shown().selectionLabel, "6 selected · 6 KB will move to Trash");
}

TEST_F(CleanupMove, FilesThatChangeAfterTheConfirmationAreListedAndNothingMoves) {
    openWithThreeLogs();
    askToMove({"/l/a", "/l/b"});
    disk.failures["/l/b"] = "it no longer exists";
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(shell.alert->message, "The files changed before they could be moved");
    EXPECT_EQ(shell.alert->informativeText,
              "b: it no longer exists\n\nNothing was moved. Scan again to refresh the safety checks.");
    EXPECT_EQ(enabledButtons(), "");
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(log.count("cleanup.coordinate"), 0);
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    EXPECT_EQ(shown().statusLabel, summary);
}

TEST_F(CleanupMove, OneFailureAmongThreeLeavesOneBehind) {
    openWithThreeLogs();
    disk.moves["/l/b"] = {.reason = "it was modified after the scan"};
    askToMove({"/l/a", "/l/b", "/l/c"});
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(shown().statusLabel, "Moved 2 items to the Trash; 1 could not be moved");
    EXPECT_THAT(rows(), ElementsAre("b selected", "cache"));
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    ASSERT_EQ(disk.recorded().size(), 2) << "the record is written for those that moved";
    EXPECT_EQ(disk.recorded()[0].url, "/l/a");
    EXPECT_EQ(disk.recorded()[1].url, "/l/c");
}

TEST_F(CleanupMove, AFileThatIsMovedAwayDuringCoordinationIsLeftAlone) {
    openWithThreeLogs();
    disk.coordinatedTo["/l/a"] = "/l/elsewhere";
    askToMove({"/l/a", "/l/b"});
    answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(log.only({"cleanup.moveToTrash"}), ElementsAre("cleanup.moveToTrash /l/b"));
    EXPECT_EQ(shown().statusLabel, "Moved 1 item to the Trash; 1 could not be moved");
}

TEST_F(CleanupMove, WhenNothingCouldBeMovedThereIsNoRecord) {
    openWithThreeLogs();
    disk.coordinationErrors["/l/a"] = Error{ErrorKind::system, "The file is in use."};
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(shown().statusLabel, "Moved 0 items to the Trash; 1 could not be moved");
    EXPECT_EQ(log.count("cleanup.saveHistory"), 0);
    EXPECT_THAT(rows(), ElementsAre("a selected", "b", "c", "cache"));
}

TEST_F(CleanupMove, WithEverythingMovedNothingIsSelected) {
    openWith({logAt("/l/a"), logAt("/l/b")});
    controller->selectSuggestedPressed();
    controller->trashPressed();
    settle();
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(shown().selectedCard.value, "0 B");
    EXPECT_EQ(enabledButtons(), "scan ");
    EXPECT_EQ(shown().emptyState->title, "No cleanup files found");
    EXPECT_EQ(shown().foundCard.value, "0 B");
}

/// Where a move can be when something else is tried.
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
    ASSERT_EQ(disk.recorded().size(), 1);
    EXPECT_EQ(disk.recorded()[0].url, "/l/a");
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
    EXPECT_THAT(log.only({"cleanup.coordinate", "cleanup.moveToTrash", "shell.ask"}), IsEmpty());
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    EXPECT_THAT(rows(), ElementsAre("a selected", "b", "c", "cache"));
}

// A check that hangs must not hold up the window for ever.
TEST_P(CleanupMoveStepsBeforeTheMove, ACheckIsGivenUpByEscapeAndByClosingTheWindow) {
    for (const bool byEscape : {true, false}) {
        goThere();
        if (GetParam().asks)
            return; // the front end answers the sheet
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
        EXPECT_EQ(log.count("cleanup.moveToTrash"), 0);
    }
}

const std::vector<Step> stepsBeforeTheMove{{"checking", 0, false, false},
                                           {"checked", 1, false, false},
                                           {"asking", 2, false, true},
                                           {"checkingAgain", 0, true, false},
                                           {"checkedAgain", 1, true, false}};
const std::vector<Step> stepsOfTheMove{{"moving", 2, true, false}, {"moved", 3, true, false}};
const auto nameOf = [](const auto& step) { return step.param.name; };

TEST_P(CleanupMoveSteps, EscapeDoesNothingToASheetOrAMove) {
    goThere();
    if (!GetParam().asks && !(GetParam().confirmed && GetParam().blocks >= 2))
        return;
    const auto before = shown();
    controller->cancelPressed();
    controller->windowClosed();
    EXPECT_EQ(shown(), before);
    EXPECT_THAT(log.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(BeforeTheMove, CleanupMoveSteps, testing::ValuesIn(stepsBeforeTheMove), nameOf);
INSTANTIATE_TEST_SUITE_P(InTheMove, CleanupMoveSteps, testing::ValuesIn(stepsOfTheMove), nameOf);
INSTANTIATE_TEST_SUITE_P(, CleanupMoveStepsBeforeTheMove, testing::ValuesIn(stepsBeforeTheMove), nameOf);

TEST_F(CleanupMove, AConfirmationOfAWindowThatIsGoneMovesNothing) {
    openWithThreeLogs();
    askToMove({"/l/a"});
    shell.cleanupWindowShown = false;
    log.clear();
    answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(log.only({"cleanup.", "backgroundQueue."}), IsEmpty());
    EXPECT_EQ(enabledButtons(), "scan select trash ");
}

TEST_F(CleanupMove, AFileThatLiesElsewhereIsNamedAndInNeitherCount) {
    openWithThreeLogs();
    disk.moves["/l/a"] = {TrashMove::Outcome::misplaced, "something else was in its place", "/trash/files/a"};
    disk.moves["/l/b"] = {.reason = "it was modified after the scan"};
    askToMove({"/l/a", "/l/b", "/l/c"});
    answer(AlertAnswer::first);
    settle();
    EXPECT_EQ(shown().statusLabel, "Moved 1 item to the Trash; 1 could not be moved");
    ASSERT_EQ(disk.recorded().size(), 1);
    EXPECT_EQ(disk.recorded()[0].url, "/l/c");
    EXPECT_THAT(rows(), ElementsAre("b selected", "cache")) << "it is not where it was found";
    ASSERT_TRUE(shell.alert);
    EXPECT_EQ(shell.alert->message, "Some items could not be put back");
    EXPECT_EQ(shell.alert->informativeText, "a: it is at /trash/files/a\n\nAnother program interfered while they were "
                                            "being moved. Ombrel deleted nothing.");
    EXPECT_THAT(shell.alert->buttons, ElementsAre("OK"));
    EXPECT_EQ(enabledButtons(), "");
    answer(AlertAnswer::last);
    EXPECT_EQ(enabledButtons(), "scan select trash ");
}

TEST_F(CleanupMove, AFileThatLiesElsewhereBringsAClosedWindowBack) {
    openWithThreeLogs();
    disk.moves["/l/a"] = {TrashMove::Outcome::misplaced, "something else was in its place", "/trash/files/a"};
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    backgroundQueue->runNext();
    mainQueue->runNext();
    shell.cleanupWindowShown = false;
    controller->windowClosed();
    settle();
    EXPECT_TRUE(shell.cleanupWindowShown);
    EXPECT_EQ(shell.alert->message, "Some items could not be put back");
}

TEST_F(CleanupMove, TheEndOfTheProcessStopsAMoveAfterTheFileInHand) {
    openWithThreeLogs();
    disk.beforeMove = [this](const CleanupCandidate& candidate) {
        if (candidate.url == "/l/b")
            controller->applicationWillTerminate();
    };
    askToMove({"/l/a", "/l/b", "/l/c"});
    answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(log.only({"cleanup.moveToTrash"}), ElementsAre("cleanup.moveToTrash /l/a", "cleanup.moveToTrash /l/b"));
    EXPECT_EQ(disk.recorded().size(), 2) << "and the record is complete";
}

TEST_F(CleanupMove, TheEndOfTheProcessKeepsAMoveFromBeginning) {
    openWithThreeLogs();
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    backgroundQueue->runNext();
    mainQueue->runNext(); // the move waits in the queue
    controller->applicationWillTerminate();
    log.clear();
    backgroundQueue->runNext();
    EXPECT_EQ(log.count("cleanup."), 0);
}

TEST_F(CleanupMove, AMoveThatHangsLeavesTheWindowMoving) {
    openWithThreeLogs();
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    backgroundQueue->runNext();
    mainQueue->runNext(); // the move waits in the queue, for ever
    shell.cleanupWindowShown = false;
    controller->showAndScan();
    EXPECT_EQ(enabledButtons(), "busy");
    EXPECT_EQ(shown().statusLabel, "Moving selected items to the Trash…");
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().selectionLabel, guideSelection);
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_EQ(shown().statusLabel, "Moving selected items to the Trash…");
    EXPECT_EQ(enabledButtons(), "busy");
    EXPECT_THAT(rows(), ElementsAre("a selected", "b", "c", "cache"));
}

TEST_F(CleanupMove, AMoveEndsInTheGuideWithTheGuidesTexts) {
    openWithThreeLogs();
    askToMove({"/l/a"});
    answer(AlertAnswer::first);
    controller->modeChanged(CleanupWindowMode::storageGuide);
    settle();
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().selectionLabel, guideSelection);
    EXPECT_EQ(shown().foundCard.detail, "3 files shown; nothing removed automatically");
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_EQ(shown().statusLabel, "Moved 1 item to the Trash · a privacy-safe local record was saved");
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(enabledButtons(), "scan select ");
}

} // namespace

} // namespace vantry
