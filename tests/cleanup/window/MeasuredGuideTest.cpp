#include "tests/cleanup/window/CleanupWindowFixture.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace vantry {

namespace {

// What the window makes of the guide's amounts, whatever comes between them and the scan.
class MeasuredGuide : public CleanupWindowFixture {
protected:
    MeasuredGuide() {
        disk.system = HostSystem::linuxDesktop;
        disk.measureGuide = [this](const std::function<bool()>& isWanted) {
            ++measured;
            wanted = isWanted;
            if (const auto now = std::exchange(meanwhile, nullptr))
                now();
            return std::map<std::string, GuideUsage>{
                {"npm", {CleanupScanState::checked, CleanupByteAmount::exact(1000 * measured), {}}},
                {"trash", {CleanupScanState::checked, CleanupByteAmount::exact(1000 * measured), {}}}};
        };
        controller =
            std::make_shared<CleanupWindowController>(shell, mainQueue, backgroundQueue, workspace, disk.services());
    }
    [[nodiscard]] std::string usageOf(const char* title) const {
        for (const auto& section : shown().sections)
            for (const auto& row : section.avenues)
                if (row.title == title)
                    return row.usage;
        return "no row";
    }
    [[nodiscard]] std::string npm() const { return usageOf("npm"); }
    // The guide is measured, and its amounts wait to be shown.
    void measureTheGuide() {
        disk.report = reportOf({logAt("/l/a"), logAt("/l/b")});
        controller->showAndScan();
        finishTheScan();
        ASSERT_TRUE(backgroundQueue->runNext());
        ASSERT_EQ(measured, 1);
    }
    void finishTheScan() {
        ASSERT_TRUE(backgroundQueue->runNext());
        ASSERT_TRUE(mainQueue->runNext());
    }
    int measured = 0;
    std::function<bool()> wanted;
    std::function<void()> meanwhile; ///< happens while the guide is measured, once
};

TEST_F(MeasuredGuide, ComesAfterTheCandidatesWhichCanBeUsedMeanwhile) {
    disk.report = reportOf({logAt("/l/a")});
    controller->showAndScan();
    finishTheScan();
    EXPECT_EQ(measured, 0);
    EXPECT_THAT(rows(), ElementsAre("a"));
    EXPECT_EQ(enabledButtons(), "scan select ");
    tick("/l/a");
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(npm(), "Not measured yet");
    settle();
    EXPECT_EQ(npm(), "1 KB used here");
    controller->modeChanged(CleanupWindowMode::filesFound);
    EXPECT_THAT(rows(), ElementsAre("a selected"));
}

TEST_F(MeasuredGuide, OfAnEarlierScanIsDroppedAndStaysShownUntilTheNextOneIsMeasured) {
    openWith({});
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(npm(), "1 KB used here");
    controller->scanPressed();
    finishTheScan();
    ASSERT_TRUE(backgroundQueue->runNext()); // measured, and not shown yet
    EXPECT_TRUE(wanted());
    controller->scanPressed();
    EXPECT_FALSE(wanted());
    ASSERT_TRUE(mainQueue->runNext());
    EXPECT_EQ(npm(), "1 KB used here");
    settle();
    EXPECT_EQ(npm(), "3 KB used here");
}

TEST_F(MeasuredGuide, IsNotMeasuredForAScanThatIsFollowedByAnother) {
    controller->showAndScan();
    finishTheScan();
    controller->scanPressed();
    settle();
    EXPECT_EQ(measured, 1);
}

TEST_F(MeasuredGuide, IsNoLongerWantedNorShownAtTheEnd) {
    measureTheGuide();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    controller->applicationWillTerminate();
    EXPECT_FALSE(wanted());
    settle();
    EXPECT_EQ(npm(), "Not measured yet");
}

TEST_F(MeasuredGuide, OutlivesNoController) {
    measureTheGuide();
    controller.reset();
    EXPECT_FALSE(wanted());
    settle();
}

TEST_F(MeasuredGuide, IsNoLongerWantedNorShownOnceTheWindowIsClosed) {
    measureTheGuide();
    controller->modeChanged(CleanupWindowMode::storageGuide);
    controller->windowClosed();
    EXPECT_FALSE(wanted());
    settle();
    EXPECT_EQ(npm(), "Not measured yet");
    controller->showAndScan();
    settle();
    EXPECT_EQ(npm(), "2 KB used here");
}

TEST_F(MeasuredGuide, IsNotMeasuredForAScanThatEndsBehindAClosedWindow) {
    controller->showAndScan();
    shell.cleanupWindowShown = false;
    controller->windowClosed();
    finishTheScan();
    EXPECT_FALSE(backgroundQueue->runNext());
    EXPECT_EQ(measured, 0);
}

TEST_F(MeasuredGuide, IsShownBehindASheetWithoutDisturbingIt) {
    measureTheGuide();
    tick("/l/a");
    controller->trashPressed();
    ASSERT_TRUE(mainQueue->runNext()); // shown while the file is checked
    EXPECT_EQ(enabledButtons(), "busy");
    settle();
    ASSERT_TRUE(shell.alert);
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(npm(), "1 KB used here");
    answer(AlertAnswer::first);
    settle();
    EXPECT_THAT(recorded(), ElementsAre("/l/a"));
}

TEST_F(MeasuredGuide, KnowsNothingOfTheTrashAfterAMove) {
    openWith({logAt("/l/a"), logAt("/l/b")});
    move({"/l/a"});
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(usageOf("Trash"), "Not measured yet");
    EXPECT_EQ(npm(), "1 KB used here");
    EXPECT_EQ(measured, 1);
}

TEST_F(MeasuredGuide, StillKnowsTheTrashAfterAMoveOfNothing) {
    openWith({logAt("/l/a"), logAt("/l/b")});
    disk.moves["/l/a"] = TrashMove::notMoved("in use");
    move({"/l/a"});
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(usageOf("Trash"), "1 KB used here");
}

TEST_F(MeasuredGuide, IsMeasuredAgainWhenAMoveEndsMeanwhile) {
    meanwhile = [this] {
        const auto first = wanted;
        move({"/l/a"});
        EXPECT_FALSE(first());
    };
    openWith({logAt("/l/a"), logAt("/l/b")});
    controller->modeChanged(CleanupWindowMode::storageGuide);
    EXPECT_EQ(measured, 2);
    EXPECT_EQ(usageOf("Trash"), "2 KB used here");
}

} // namespace

} // namespace vantry
