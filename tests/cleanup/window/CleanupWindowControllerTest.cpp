#include "tests/cleanup/window/CleanupWindowFixture.h"

namespace vantry {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using CleanupWindow = CleanupWindowFixture;

TEST_F(CleanupWindow, HasItsTextsBeforeAnythingIsDone) {
    const auto& content = controller->content();
    EXPECT_EQ(content, CleanupWindowContent());
    EXPECT_EQ(content.windowTitle, "Ombrel · Free Up Space");
    EXPECT_EQ(content.size.width, 940);
    EXPECT_EQ(content.size.height, 760);
    EXPECT_EQ(content.minimumSize.width, 780);
    EXPECT_EQ(content.minimumSize.height, 620);
    EXPECT_EQ(content.titleLabel, "Free Up Space");
    EXPECT_EQ(content.subtitleLabel, "See what is using space, what can be selected, and what must stay protected.");
    EXPECT_EQ(content.macStorageCard,
              (SummaryCardContent{"Mac Storage Used", "Everything stored on this Mac", "—", SystemColor::blue}));
    EXPECT_EQ(content.foundCard,
              (SummaryCardContent{"Files Found", "Shown only; nothing removed", "—", SystemColor::orange}));
    EXPECT_EQ(content.selectedCard, (SummaryCardContent{"Selected for Trash", "Recoverable until Trash is emptied", "—",
                                                        SystemColor::green}));
    EXPECT_THAT(content.modeLabels, ElementsAre("Files Found", "Storage Guide"));
    EXPECT_EQ(content.modeControl, CleanupWindowMode::filesFound);
    EXPECT_EQ(content.scanButton, (CleanupButtonContent{"Scan Again"}));
    EXPECT_EQ(content.selectSuggestedButton, (CleanupButtonContent{"Select Low-Risk Files", false}));
    EXPECT_EQ(content.trashButton, (CleanupButtonContent{"Move to Trash…", false}));
    EXPECT_FALSE(content.progressIndicator);
    EXPECT_EQ(content.noticeSymbolName, "lock.shield.fill");
    EXPECT_EQ(content.notice, "Only individual low-risk files can be selected. macOS files, app databases, documents, "
                              "photos, messages, passwords, game saves, and device backups are blocked.");
    EXPECT_EQ(content.statusLabel, "Scan local metadata to find explainable cleanup opportunities.");
    EXPECT_EQ(content.selectionLabel, "Nothing selected");
    EXPECT_THAT(log.calls(), IsEmpty()) << "nothing is drawn, read or asked";
}

TEST_F(CleanupWindow, ShowsItselfAndScansInTheBackground) {
    workspace->runningIdentifiers = {"com.example.painter", "com.example.player"};
    controller->showAndScan();
    EXPECT_THAT(log.only({"shell.showCleanupWindow", "workspace.", "backgroundQueue.", "cleanup."}),
                ElementsAre("shell.showCleanupWindow", "workspace.runningBundleIdentifiers",
                            "backgroundQueue.submit userInitiated"));
    log.clear();
    backgroundQueue->runNext();
    EXPECT_THAT(log.calls(), ElementsAre("cleanup.scan com.example.painter com.example.player", "mainQueue.post"));
    log.clear();
    mainQueue->runNext();
    EXPECT_THAT(log.calls(), ElementsAre("shell.renderCleanupWindow", "shell.scrollCleanupResultsToTop"));
}

TEST_F(CleanupWindow, ShowsTheProgressOfAScan) {
    disk.report = reportOf({});
    controller->showAndScan();
    settle();
    std::vector<std::string> statuses;
    for (const auto& content : shell.renderings)
        statuses.push_back(content.statusLabel);
    EXPECT_THAT(statuses, ElementsAre(measuringStatus, checkingStatus,
                                      "Scan complete · This Mac uses 300 GB of 500 GB · 0 B of cleanup files found · "
                                      "0 low-risk files can be selected"));
}

TEST_F(CleanupWindow, DisablesTheGuidesButtonsDuringTheFirstScan) {
    workspace->closed = {disk.services().home / "Downloads"};
    controller->showAndScan();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    std::vector<bool> enabled;
    for (const auto& section : shown().sections)
        for (const auto& avenue : section.avenues)
            if (avenue.button)
                enabled.push_back(avenue.button->enabled);
    EXPECT_THAT(enabled, Contains(false));
    EXPECT_THAT(enabled, Contains(true));
}

TEST_F(CleanupWindow, CanStartNothingWhileItScans) {
    controller->showAndScan();
    EXPECT_EQ(enabledButtons(), "busy");
    EXPECT_EQ(shown().emptyState->title, "Checking storage…");
    EXPECT_THAT(shown().sections, IsEmpty());
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(shown().selectedCard.value, "0 B");
    EXPECT_EQ(shown().macStorageCard.value, "—") << "nothing is known yet";
    log.clear();
    controller->scan();
    controller->scanPressed();
    controller->trashPressed();
    EXPECT_THAT(log.calls(), IsEmpty());
    controller->showAndScan();
    EXPECT_THAT(log.calls(), ElementsAre("shell.showCleanupWindow"));
    EXPECT_EQ(backgroundQueue->waitingCount(), 1);
}

TEST_F(CleanupWindow, ShowsWhatTheScanFound) {
    openWith({logAt("/l/a.log", 3'000'000), candidateAt("/c/cache", CleanupCategory::cache, 2'000'000)});
    EXPECT_EQ(enabledButtons(), "scan select ");
    EXPECT_EQ(shown().statusLabel, "Scan complete · This Mac uses 300 GB of 500 GB · 2 files shown use 5 MB · 1 "
                                   "low-risk file can be selected");
    EXPECT_EQ(shown().macStorageCard.value, "300 GB");
    EXPECT_EQ(shown().macStorageCard.detail, "300 GB used of 500 GB total");
    EXPECT_EQ(shown().macStorageCard.title, "Mac Storage Used");
    EXPECT_EQ(shown().foundCard.value, "5 MB");
    EXPECT_EQ(shown().foundCard.detail, "2 files shown; nothing removed automatically");
    EXPECT_EQ(shown().selectedCard.value, "0 B");
    EXPECT_EQ(shown().selectedCard.detail, "Recoverable until Trash is emptied");
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_FALSE(shown().emptyState);
    EXPECT_THAT(rows(), ElementsAre("a.log", "cache"));
}

TEST_F(CleanupWindow, ShowsThatNothingWasFound) {
    openWith({});
    EXPECT_EQ(shown().emptyState->title, "No cleanup files found");
    EXPECT_THAT(shown().sections, IsEmpty());
    EXPECT_EQ(enabledButtons(), "scan ");
    EXPECT_EQ(shown().foundCard.value, "0 B");
    EXPECT_EQ(shown().foundCard.detail, "0 files shown; nothing removed automatically");
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_FALSE(shown().emptyState);
    std::size_t avenues = 0;
    for (const auto& section : shown().sections)
        avenues += section.avenues.size();
    EXPECT_EQ(avenues, 37);
}

TEST_F(CleanupWindow, SuggestsNothingWhenNothingIsLowRisk) {
    openWith({candidateAt("/c/cache", CleanupCategory::cache)});
    EXPECT_EQ(enabledButtons(), "scan ");
    controller->selectSuggestedPressed();
    EXPECT_EQ(enabledButtons(), "scan ");
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
}

TEST_F(CleanupWindow, ShowsThatTheSizeOfTheVolumeIsUnavailable) {
    disk.report = reportOf({});
    disk.report.storageSnapshot.reset();
    controller->showAndScan();
    settle();
    EXPECT_EQ(shown().macStorageCard.value, "Unavailable");
    EXPECT_EQ(shown().macStorageCard.detail, "Mac storage size could not be read");
}

TEST_F(CleanupWindow, ScanAgainStartsOneScanHoweverOftenItIsPressedAndClearsTheSelection) {
    openWith({logAt("/l/a"), logAt("/l/b")});
    controller->selectSuggestedPressed();
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    shell.renderings.clear();
    for (int press = 0; press < 3; ++press)
        controller->scanPressed();
    EXPECT_EQ(backgroundQueue->waitingCount(), 1);
    EXPECT_EQ(log.count("workspace.runningBundleIdentifiers"), 1);
    EXPECT_EQ(enabledButtons(), "busy");
    EXPECT_EQ(shown().foundCard.detail, "2 files shown; nothing removed automatically") << "until more is known";
    EXPECT_EQ(shown().statusLabel, checkingStatus);
    for (const auto& content : shell.renderings) {
        EXPECT_EQ(content.selectionLabel, nothingSelected);
        EXPECT_EQ(content.selectedCard.value, "0 B");
    }
    disk.report = reportOf({logAt("/l/c")});
    settle();
    EXPECT_THAT(rows(), ElementsAre("c"));
    EXPECT_EQ(enabledButtons(), "scan select ");
}

TEST_F(CleanupWindow, OldResultsCannotBeTickedDuringAScan) {
    openWith({logAt("/l/a"), logAt("/l/b")});
    controller->scanPressed();
    EXPECT_EQ(shown().emptyState->title, "Checking storage…");
    EXPECT_THAT(shown().sections, IsEmpty());
    EXPECT_FALSE(shown().selectionEnabled);
    log.clear();
    tick("/l/a");
    controller->selectSuggestedPressed();
    controller->cancelPressed();
    EXPECT_THAT(log.calls(), IsEmpty());
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().sections.size(), 6) << "the guide keeps what is known";
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_EQ(shown().emptyState->title, "Checking storage…");
    settle();
    EXPECT_FALSE(shown().emptyState);
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_TRUE(shown().selectionEnabled);
}

TEST_F(CleanupWindow, KeepsItsResultsWhileItIsClosedAndScansAgainWhenItIsOpened) {
    disk.report = reportOf({logAt("/l/a")});
    controller->showAndScan();
    shell.cleanupWindowShown = false;
    settle();
    EXPECT_THAT(rows(), ElementsAre("a"));
    EXPECT_EQ(enabledButtons(), "scan select ");
    disk.report = reportOf({logAt("/l/b")});
    controller->showAndScan();
    settle();
    EXPECT_THAT(rows(), ElementsAre("b"));
}

TEST_F(CleanupWindow, ChangingTheModeDrawsAgainFromTheTopWithoutScanning) {
    openWith({logAt("/l/a", 3'000'000)});
    tick("/l/a");
    const auto before = shown();
    log.clear();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().modeControl, CleanupWindowMode::storageGuide);
    EXPECT_TRUE(shown().selectSuggestedButton.hidden);
    EXPECT_TRUE(shown().trashButton.hidden);
    EXPECT_FALSE(shown().scanButton.hidden);
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().selectionLabel, guideSelection);
    EXPECT_EQ(shown().selectedCard.value, "3 MB");
    EXPECT_EQ(shown().sections.size(), 6);
    EXPECT_EQ(shown().sections[0].avenues[1].status, "1 file");
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_EQ(shown(), before) << "and back";
    controller->modeChanged(CleanupWindowMode::filesFound); // the same once more
    EXPECT_THAT(log.calls(),
                ElementsAre("shell.renderCleanupWindow", "shell.scrollCleanupResultsToTop", "shell.renderCleanupWindow",
                            "shell.scrollCleanupResultsToTop", "shell.renderCleanupWindow"));
}

TEST_F(CleanupWindow, TheModeCanChangeDuringTheFirstScan) {
    controller->showAndScan();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().selectionLabel, guideSelection);
    EXPECT_FALSE(shown().emptyState);
    EXPECT_EQ(shown().sections[0].avenues[0].usage, "Not measured yet");
    EXPECT_EQ(enabledButtons(), "busy");
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_EQ(shown().statusLabel, checkingStatus);
    EXPECT_EQ(shown().emptyState->title, "Checking storage…");
    EXPECT_EQ(enabledButtons(), "busy");
}

TEST_F(CleanupWindow, AScanInTheGuideKeepsItsTexts) {
    openWith({logAt("/l/a", 1'000'000)});
    controller->selectSuggestedPressed();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    controller->scanPressed();
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().selectedCard.value, "1 MB") << "as last shown with the files";
    EXPECT_EQ(enabledButtons(), "busy");
    disk.report = reportOf({logAt("/l/a"), logAt("/l/b")});
    settle();
    EXPECT_EQ(shown().statusLabel, guideStatus);
    EXPECT_EQ(shown().selectionLabel, guideSelection);
    EXPECT_EQ(shown().sections[0].avenues[1].status, "2 files");
    EXPECT_EQ(shown().foundCard.detail, "2 files shown; nothing removed automatically");
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(enabledButtons(), "scan select ");
}

TEST_F(CleanupWindow, AnAvenuesButtonOpensAFolderASettingsPaneOrAnApplication) {
    using enum CleanupAvenue::Action;
    for (const auto action : {downloads, storageSettings, mail})
        controller->avenueActionPressed(action);
    EXPECT_THAT(log.calls(),
                ElementsAre("workspace.openItem /home/ada/Downloads",
                            "workspace.openSettingsPane x-apple.systempreferences:com.apple.settings.Storage",
                            "workspace.openItem /System/Applications/Mail.app"));
}

TEST_F(CleanupWindow, ACommandIsCopiedAndNeverRun) {
    openWith({});
    controller->modeChanged(CleanupWindowMode::storageGuide);
    log.clear();
    controller->avenueActionPressed(CopyCommand{"npm cache verify"});
    EXPECT_THAT(log.calls(), ElementsAre("workspace.copyText npm cache verify", "shell.renderCleanupWindow"));
    EXPECT_EQ(shown().statusLabel, "Copied “npm cache verify”. Ombrel never runs it: paste it into a terminal.");
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().statusLabel, guideStatus);
    controller->avenueActionPressed(CopyCommand{"npm cache verify"});
    controller->scanPressed();
    EXPECT_FALSE(shown().statusLabel.contains("Copied")) << shown().statusLabel;
}

TEST_F(CleanupWindow, ButtonsThatOpenNothingAreDisabled) {
    workspace->closed = {"/Applications", "/System/Applications/Mail.app", "/home/ada/Library/Developer",
                         "x-apple.systempreferences:com.apple.settings.Storage"};
    openWith({});
    controller->modeChanged(CleanupWindowMode::storageGuide);
    std::map<std::string, std::string> buttons;
    for (const auto& section : shown().sections)
        for (const auto& row : section.avenues)
            if (row.button)
                buttons[row.button->title] = row.button->enabled ? "enabled" : row.button->tooltip;
    EXPECT_THAT(buttons, ElementsAre(std::pair("Open Applications", "Available on macOS only."),
                                     std::pair("Open Backups", "enabled"),
                                     std::pair("Open Developer Folder", "This folder does not exist."),
                                     std::pair("Open Downloads", "enabled"), std::pair("Open Home Folder", "enabled"),
                                     std::pair("Open Mail", "Available on macOS only."),
                                     std::pair("Open Messages", "enabled"), std::pair("Open Photos", "enabled"),
                                     std::pair("Open Storage Settings", "Available on macOS only."),
                                     std::pair("Open Time Machine", "enabled")));
}

TEST_F(CleanupWindow, ChecksOncePerScanWhatCanBeOpened) {
    openWith({logAt("/l/a")});
    workspace->askedAbout.clear();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    controller->modeChanged(CleanupWindowMode::filesFound);
    tick("/l/a");
    EXPECT_THAT(workspace->askedAbout, IsEmpty());
    workspace->closed = {"/home/ada/Downloads"};
    controller->scanPressed();
    settle();
    EXPECT_EQ(workspace->askedAbout.size(), 10);
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(shown().sections[1].avenues[0].button->tooltip, "This folder does not exist.");
}

TEST_F(CleanupWindow, RevealsEveryKindOfCandidate) {
    openWith({logAt("/l/a"), candidateAt("/c/b", CleanupCategory::cache),
              candidateAt("/d/c", CleanupCategory::deviceBackup)});
    for (const auto* path : {"/l/a", "/c/b", "/d/c"})
        controller->revealPressed(identifierOf(path));
    EXPECT_THAT(log.calls(),
                ElementsAre("workspace.revealItem /l/a", "workspace.revealItem /c/b", "workspace.revealItem /d/c"));
}

TEST_F(CleanupWindow, AnUnknownIdentifierDoesNothing) {
    openWith({logAt("/l/a")});
    const auto uiID = disk.report.candidates.front().uiID;
    for (const auto& identifier : {std::string(), std::string("candidate-"), uiID, "candidate-" + uiID + "x"}) {
        controller->revealPressed(identifier);
        controller->candidateSelectionChanged(identifier, true);
        EXPECT_EQ(controller->candidate(identifier), nullptr);
    }
    EXPECT_THAT(log.calls(), IsEmpty());
    ASSERT_NE(controller->candidate("candidate-" + uiID), nullptr);
    EXPECT_EQ(controller->candidate("candidate-" + uiID)->url, "/l/a");
}

TEST_F(CleanupWindow, ATickSelects) {
    openWith({logAt("/l/a", 1'000'000), logAt("/l/b", 2'000'000), candidateAt("/c/c", CleanupCategory::cache)});
    tick("/l/a");
    EXPECT_THAT(rows(), ElementsAre("a selected", "b", "c"));
    EXPECT_EQ(shown().selectionLabel, "1 selected · 1 MB will move to Trash");
    EXPECT_EQ(shown().selectedCard.value, "1 MB");
    EXPECT_EQ(enabledButtons(), "scan select trash ");
    tick("/l/b");
    tick("/l/b");
    EXPECT_EQ(shown().selectionLabel, "2 selected · 3 MB will move to Trash");
    tick("/l/a", false);
    tick("/l/b", false);
    EXPECT_THAT(rows(), ElementsAre("a", "b", "c"));
    EXPECT_EQ(shown().selectionLabel, nothingSelected);
    EXPECT_EQ(shown().selectedCard.value, "0 B");
    EXPECT_EQ(enabledButtons(), "scan select ");
}

TEST_F(CleanupWindow, OnlyLowRiskFilesCanBeTicked) {
    openWith({logAt("/l/a"), candidateAt("/c/c", CleanupCategory::cache),
              candidateAt("/d/d", CleanupCategory::deviceBackup)});
    tick("/c/c");
    tick("/d/d");
    EXPECT_THAT(rows(), ElementsAre("a", "c", "d"));
    EXPECT_EQ(enabledButtons(), "scan select ");
    controller->trashPressed();
    EXPECT_FALSE(shell.alert) << "and is not in the selection";
}

TEST_F(CleanupWindow, SelectsAllThatIsLowRiskAndNothingElse) {
    openWith({logAt("/l/a", 1000), candidateAt("/l/b", CleanupCategory::crashReport, 1000),
              candidateAt("/c/c", CleanupCategory::cache), candidateAt("/d/d", CleanupCategory::installer, 1000),
              candidateAt("/d/e", CleanupCategory::interruptedDownload, 1000),
              candidateAt("/d/f", CleanupCategory::archive)});
    controller->selectSuggestedPressed();
    EXPECT_THAT(rows(), ElementsAre("a selected", "b selected", "c", "d selected", "e selected", "f"));
    EXPECT_EQ(shown().selectionLabel, "4 selected · 4 KB will move to Trash");
    controller->trashPressed();
    settle();
    ASSERT_TRUE(shell.alert);
    EXPECT_EQ(shell.alert->message, "Move 4 selected items to the Trash?");
}

} // namespace

} // namespace vantry
