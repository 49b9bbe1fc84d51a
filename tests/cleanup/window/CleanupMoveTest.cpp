#include "tests/cleanup/window/CleanupWindowFixture.h"

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_THAT(log.calls(), ElementsAre("cleanup.coordinate /l/a", "cleanup.move /l/a", "cleanup.saveHistory 1",
                                         "cleanup.coordinate /l/c", "cleanup.move /l/c", "cleanup.saveHistory 2",
                                         "cleanup.saveHistory 2 last", "mainQueue.post"));
    EXPECT_THAT(recorded(), ElementsAre("/l/a", "/l/c"));
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
    move({"/l/a"});
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
    answer(AlertAnswer::last);

    tick("/l/b", false);
    tick("/l/a"); // the only one
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
    EXPECT_EQ(log.count("cleanup.move"), 0);
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

TEST_F(CleanupMove, TheOutcomeTellsWhatWasMovedAndRecorded) {
    struct Case {
        const char* name;
        std::function<void(FakeCleanupServices&)> arrange;
        std::vector<std::filesystem::path> selected;
        const char* status;
        std::vector<std::string> rows, recorded;
    };
    const Case cases[] = {
        {"the record cannot be written",
         [](auto& fake) { fake.historyCanBeWritten = false; },
         {"/l/a", "/l/b"},
         "Moved 2 items to the Trash",
         {"c", "cache"},
         {}},
        {"one of three fails, and the record is written for the others",
         [](auto& fake) { fake.moves["/l/b"] = {.reason = "it was modified after the scan"}; },
         {"/l/a", "/l/b", "/l/c"},
         "Moved 2 items to the Trash; 1 could not be moved",
         {"b selected", "cache"},
         {"/l/a", "/l/c"}},
    };
    for (const auto& [name, arrange, selected, status, left, record] : cases) {
        SCOPED_TRACE(name);
        openWithThreeLogs();
        disk.historyCanBeWritten = true;
        disk.moves.clear();
        disk.records.clear();
        arrange(disk);
        log.clear();
        move(selected);
        EXPECT_EQ(shown().statusLabel, status);
        EXPECT_EQ(rows(), left);
        EXPECT_EQ(recorded(), record);
        EXPECT_EQ(enabledButtons(), left[0].ends_with(" selected") ? "scan select trash " : "scan select ");
    }
}

TEST_F(CleanupMove, WithEverythingMovedNothingIsSelected) {
    openWith({logAt("/l/a"), logAt("/l/b")});
    move({"/l/a", "/l/b"});
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(shown().selectedCard.value, "0 B");
    EXPECT_EQ(enabledButtons(), "scan ");
    EXPECT_EQ(shown().emptyState->title, "No cleanup files found");
    EXPECT_EQ(shown().foundCard.value, "0 B");
}

TEST_F(CleanupMove, AMovedPathIsNoLongerSelectedEvenIfItWasFoundTwice) {
    openWith({logAt("/l/a"), candidateAt("/l/a", CleanupCategory::crashReport), logAt("/l/b")});
    disk.beforeMove = [this](const CleanupCandidate& candidate) {
        if (candidate.category == CleanupCategory::crashReport)
            disk.moves["/l/a"] = {.reason = "it is not to be found in its place"};
    };
    move({"/l/a"});
    EXPECT_EQ(shown().statusLabel, "Moved 1 item to the Trash; 1 could not be moved");
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
}

TEST_F(CleanupMove, ACheckThatEndsInAHiddenWindowAsksNothing) {
    openWithThreeLogs();
    tick("/l/a");
    controller->trashPressed();
    shell.cleanupWindowShown = false;
    settle();
    EXPECT_FALSE(shell.alert);
    EXPECT_EQ(enabledButtons(), "scan select trash ");
}

TEST_F(CleanupMove, AConfirmationInAClosedWindowMovesNothing) {
    openWithThreeLogs();
    askToMove({"/l/a"});
    shell.cleanupWindowShown = false;
    log.clear();
    answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(log.only({"cleanup.", "backgroundQueue."}), IsEmpty());
    EXPECT_EQ(enabledButtons(), "scan select trash ");
}

TEST_F(CleanupMove, AMisplacedFileIsReportedAndInNeitherCount) {
    openWithThreeLogs();
    disk.moves["/l/a"] = {TrashMove::Outcome::misplaced, "something else was in its place", "/trash/files/a"};
    disk.moves["/l/b"] = {.reason = "it was modified after the scan"};
    move({"/l/a", "/l/b", "/l/c"});
    EXPECT_THAT(log.only({"shell.showCleanupWindow"}), IsEmpty()) << "the window is open";
    EXPECT_EQ(shown().statusLabel, "Moved 1 item to the Trash; 1 could not be moved");
    EXPECT_THAT(recorded(), ElementsAre("/l/c"));
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

TEST_F(CleanupMove, AMisplacedFileReopensAClosedWindow) {
    openWithThreeLogs();
    disk.moves["/l/a"] = {TrashMove::Outcome::misplaced, "something else was in its place", "/trash/files/a"};
    beginToMove("/l/a");
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
    move({"/l/a", "/l/b", "/l/c"});
    EXPECT_THAT(log.only({"cleanup.move"}), ElementsAre("cleanup.move /l/a", "cleanup.move /l/b"));
    EXPECT_THAT(recorded(), ElementsAre("/l/a", "/l/b")) << "and the record is complete";
}

TEST_F(CleanupMove, TheEndOfTheProcessKeepsAMoveFromBeginning) {
    openWithThreeLogs();
    beginToMove("/l/a");
    controller->applicationWillTerminate();
    log.clear();
    backgroundQueue->runNext();
    EXPECT_EQ(log.count("cleanup."), 0);
}

TEST_F(CleanupMove, AMoveThatHangsLeavesTheWindowMoving) {
    openWithThreeLogs();
    beginToMove("/l/a");
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
