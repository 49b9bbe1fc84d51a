#include "platform/TextFormat.h"
#include "tests/app/AppDelegateFixture.h"

#include <limits>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using AppDelegateStorage = AppDelegateFixture;

const StorageSnapshot laterSnapshot{.volumeName = "Data",
                                    .totalBytes = 500'000'000'000,
                                    .availableBytes = 100'000'000'000,
                                    .updatedAt = SystemTime(std::chrono::seconds(1'700'003'600))};

StorageReadResult failure(StorageReadError cause) { return std::unexpected(StorageReadFailure{cause}); }
StorageReadResult failure(Error cause) { return std::unexpected(StorageReadFailure{std::move(cause)}); }

TEST_F(AppDelegateStorage, AGoodReadReachesBarPopoverAndTexts) {
    launch();
    world.settle();
    const StorageSnapshot& snapshot = *world.volume;
    const StatusItemContent& item = shell.statusItem();
    EXPECT_EQ(item.view.snapshot, snapshot);
    EXPECT_EQ(item.tooltip, "Data: 300 GB used, 200 GB available");
    EXPECT_EQ(item.accessibilityLabel, "Data: 300 GB used, 200 GB available");
    const PopoverContent& popover = shell.popover();
    EXPECT_EQ(popover.barView.snapshot, snapshot);
    EXPECT_EQ(popover.titleLabel.text, "Data");
    EXPECT_EQ(popover.summaryLabel.text, "300 GB of 500 GB used");
    EXPECT_EQ(popover.updateLabel.text, "Updated " + shortTimeText(snapshot.updatedAt));
    EXPECT_TRUE(popover.errorLabel.hidden);
}

TEST_F(AppDelegateStorage, TheTextsOfTheItemUseEveryUnitAndNoNegativeAmount) {
    struct Case {
        std::int64_t total;
        std::int64_t available;
        std::string text;
    };
    const std::vector<Case> cases{
        {1000, 488, "Data: 512 bytes used, 488 bytes available"},
        {10'000, 10'000, "Data: 0 B used, 10 KB available"},
        {10'000, 20'000, "Data: 0 B used, 20 KB available"},
        {4'000'000'000'000, 0, "Data: 4 TB used, 0 B available"},
        {3'000'000, 1'000'000, "Data: 2 MB used, 1 MB available"},
    };
    launch();
    for (const auto& [total, available, text] : cases) {
        world.volume->totalBytes = total;
        world.volume->availableBytes = available;
        delegate->refreshStorage();
        world.settle();
        EXPECT_EQ(shell.statusItem().tooltip, text);
        EXPECT_EQ(shell.statusItem().accessibilityLabel, text);
    }
}

TEST_F(AppDelegateStorage, TwoTriggersWithinOneReadMakeOneRead) {
    launchAndSettle();
    delegate->refreshStorage();
    delegate->timerFired();
    delegate->workspaceDidWake();
    world.settle();
    EXPECT_EQ(log.count("volume.read"), 1);
}

TEST_F(AppDelegateStorage, ARequestIsDroppedUntilTheResultHasArrived) {
    launchAndSettle();
    delegate->refreshStorage();
    delegate->refreshStorage();
    EXPECT_EQ(world.backgroundQueue->waitingCount(), 1);
    world.backgroundQueue->runNext();
    delegate->refreshStorage();
    EXPECT_EQ(world.backgroundQueue->waitingCount(), 0) << "the result waits on the main queue";
    world.settle();
    EXPECT_EQ(log.count("volume.read"), 1) << "dropped, not queued";
}

TEST_F(AppDelegateStorage, ADroppedRequestChangesNothing) {
    launchAndSettle();
    delegate->refreshStorage();
    log.clear();
    delegate->refreshStorage();
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(AppDelegateStorage, ARefreshAfterTheReadReadsAgain) {
    const std::vector<StorageReadResult> firstResults{*world.volume, failure(StorageReadError::missingCapacity)};
    for (const auto& first : firstResults) {
        world.volume = first;
        launchAndSettle();
        world.volume = laterSnapshot;
        delegate->refreshStorage();
        world.settle();
        EXPECT_EQ(log.count("volume.read"), 1);
        EXPECT_EQ(shell.statusItem().view.snapshot, laterSnapshot);
    }
}

TEST_F(AppDelegateStorage, ReadsInTheBackgroundAndShowsOnTheMainQueue) {
    launchAndSettle();
    delegate->refreshStorage();
    EXPECT_EQ(log.count("volume.read"), 0);
    world.backgroundQueue->runNext();
    EXPECT_EQ(log.count("volume.read"), 1);
    log.clear();
    world.mainQueue->runNext();
    EXPECT_THAT(log.only({"shell.", "volume."}), ElementsAre("shell.showStatusItem", "shell.renderPopover"));
}

TEST_F(AppDelegateStorage, AFailureIsShownInPopoverAndTooltip) {
    struct Case {
        StorageReadResult result;
        std::string text;
    };
    const std::vector<Case> cases{
        {failure(StorageReadError::missingCapacity), "The total disk capacity is unavailable."},
        {failure(StorageReadError::missingAvailableCapacity), "The available disk capacity is unavailable."},
        {failure(Error{ErrorKind::system, "/: Input/output error"}), "/: Input/output error"},
    };
    for (const auto& [result, text] : cases) {
        world.volume = result;
        launch();
        world.settle();
        EXPECT_EQ(shell.statusItem().tooltip, "Storage unavailable: " + text);
        EXPECT_EQ(shell.statusItem().accessibilityLabel, "") << "there was no read that it could have come from";
        EXPECT_EQ(shell.statusItem().view.snapshot, std::nullopt);
        EXPECT_EQ(shell.popover().errorLabel, (LabelContent{text, SystemColor::red, false}));
        EXPECT_EQ(shell.popover().summaryLabel.text, "Loading storage…");
    }
}

TEST_F(AppDelegateStorage, AFailureAfterAGoodReadKeepsTheBarAndTheAccessibilityLabel) {
    launch();
    world.settle();
    const StorageSnapshot good = *world.volume;
    const PopoverContent popoverBefore = shell.popover();
    world.volume = failure(StorageReadError::missingCapacity);
    delegate->refreshStorage();
    world.settle();
    EXPECT_EQ(shell.statusItem().view.snapshot, good);
    EXPECT_EQ(shell.statusItem().tooltip, "Storage unavailable: The total disk capacity is unavailable.");
    EXPECT_EQ(shell.statusItem().accessibilityLabel, "Data: 300 GB used, 200 GB available");
    PopoverContent expected = popoverBefore;
    expected.errorLabel = {"The total disk capacity is unavailable.", SystemColor::red, false};
    EXPECT_EQ(shell.popover(), expected);
}

TEST_F(AppDelegateStorage, AGoodReadAfterAFailureRecoversEverything) {
    launch();
    world.settle();
    world.volume = failure(StorageReadError::missingCapacity);
    delegate->refreshStorage();
    world.settle();
    world.volume = laterSnapshot;
    world.mainQueue->fireTimers();
    world.settle();
    EXPECT_EQ(shell.statusItem().view.snapshot, laterSnapshot);
    EXPECT_EQ(shell.statusItem().tooltip, "Data: 400 GB used, 100 GB available");
    EXPECT_EQ(shell.statusItem().accessibilityLabel, "Data: 400 GB used, 100 GB available");
    EXPECT_EQ(shell.popover().errorLabel, (LabelContent{"", SystemColor::red, true}));
    EXPECT_EQ(shell.popover().updateLabel.text, "Updated " + shortTimeText(laterSnapshot.updatedAt));
}

TEST_F(AppDelegateStorage, StartingAReadHidesTheLastError) {
    world.volume = failure(StorageReadError::missingCapacity);
    launchAndSettle();
    ASSERT_FALSE(shell.popover().errorLabel.hidden);
    delegate->refreshStorage();
    EXPECT_EQ(shell.popover().errorLabel, (LabelContent{"", SystemColor::red, true}));
    EXPECT_EQ(shell.statusItem().tooltip, "Storage unavailable: The total disk capacity is unavailable.")
        << "the tooltip stays until there is a result";
}

TEST_F(AppDelegateStorage, AnItemWithoutAButtonIsStillRefreshed) {
    shell.hasButton = false;
    launch();
    world.settle();
    EXPECT_EQ(shell.statusItem().view.snapshot, *world.volume);
    EXPECT_EQ(shell.popover().titleLabel.text, "Data");
    log.clear();
    world.mainQueue->fireTimers();
    world.settle();
    EXPECT_EQ(log.count("volume.read"), 1);
}

TEST_F(AppDelegateStorage, ShowsTheLargestVolume) {
    world.volume->totalBytes = std::numeric_limits<std::int64_t>::max();
    world.volume->availableBytes = 0;
    launch();
    world.settle();
    EXPECT_EQ(shell.statusItem().view.snapshot, *world.volume);
    EXPECT_EQ(shell.statusItem().tooltip, "Data: 9.22 EB used, 0 B available");
}

} // namespace

} // namespace vantry
