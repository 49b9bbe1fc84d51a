#include "app/ProcessEvents.h"
#include "app/TerminationSignals.h"
#include "tests/app/AppDelegateFixture.h"
#include "tests/app/RestoredSignals.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* name = "ombrel-test";

class LaterStarts : public AppDelegateFixture {
protected:
    void listen() {
        auto instance = SingleInstance::claim(folder.path(), name);
        ASSERT_TRUE(instance && *instance);
        events = std::make_unique<ProcessEvents>(*world.mainQueue, shell, delegate, std::move(*instance), -1);
        log.clear();
    }

    void ask(InstanceRequest request) { ASSERT_TRUE(SingleInstance::ask(folder.path(), name, request)); }

    TemporaryFolder folder;
    std::unique_ptr<ProcessEvents> events;
};

TEST_F(LaterStarts, OpenThePopoverUpToDate) {
    launchAndSettle();
    listen();
    world.preferences->values = {{"barStyle", "vividTheme"}};
    ask(InstanceRequest::showPopover);
    EXPECT_THAT(log.calls(), IsEmpty()) << "nothing happens before the loop turns";
    EXPECT_EQ(world.mainQueue->fireReadable(), 1);
    EXPECT_THAT(log.only({"shell.renderPopover", "shell.openPopover"}),
                ElementsAre("shell.renderPopover", "shell.openPopover"));
    EXPECT_EQ(shell.popover().barStylePopUp.selectedIndex, 2);
    EXPECT_EQ(world.mainQueue->fireReadable(), 0);
}

TEST_F(LaterStarts, DoNotCloseAPopoverThatIsOpen) {
    launchAndSettle();
    listen();
    shell.popoverShown = true;
    ask(InstanceRequest::showPopover);
    world.mainQueue->fireReadable();
    EXPECT_THAT(log.calls(), IsEmpty());
    EXPECT_TRUE(shell.popoverShown);
}

TEST_F(LaterStarts, OpenTheCleanupWindow) {
    launchAndSettle();
    listen();
    ask(InstanceRequest::showCleanup);
    world.mainQueue->fireReadable();
    EXPECT_THAT(log.only({"cleanup.", "shell.showCleanupWindow", "shell.openPopover"}),
                ElementsAre("cleanup.makeServices", "shell.showCleanupWindow"));
}

TEST_F(LaterStarts, AreAllAnsweredInTheirOrder) {
    launchAndSettle();
    listen();
    ask(InstanceRequest::showCleanup);
    ask(InstanceRequest::showPopover);
    ask(InstanceRequest::showCleanup);
    world.mainQueue->fireReadable();
    EXPECT_THAT(
        log.only({"cleanup.", "shell.showCleanupWindow", "shell.openPopover"}),
        ElementsAre("cleanup.makeServices", "shell.showCleanupWindow", "shell.openPopover", "shell.showCleanupWindow"));
    EXPECT_EQ(world.mainQueue->fireReadable(), 0) << "nothing is left over";
}

TEST_F(LaterStarts, ReachAnInstanceThatHasRunForDays) {
    listen();
    const auto lock = folder / (std::string(name) + ".lock");
    const auto socket = folder / (std::string(name) + ".socket");
    const timespec longAgo[2] = {{1'000'000, 0}, {1'000'000, 0}};
    for (const auto& file : {lock, socket})
        ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), longAgo, AT_SYMLINK_NOFOLLOW), 0);
    world.mainQueue->fireTimers();
    for (const auto& file : {lock, socket}) {
        struct stat facts = {};
        ASSERT_EQ(lstat(file.c_str(), &facts), 0);
        EXPECT_GT(facts.st_mtime, 2'000'000) << file << " would be taken for one that was left behind";
        EXPECT_GT(facts.st_atime, 2'000'000);
    }
}

TEST_F(LaterStarts, AreReceivedAndDroppedWhenTheDelegateIsGone) {
    launchAndSettle();
    listen();
    const std::weak_ptr<AppDelegate> last = delegate;
    delegate.reset();
    EXPECT_TRUE(last.expired());
    log.clear();
    ask(InstanceRequest::showPopover);
    ask(InstanceRequest::showCleanup);
    EXPECT_EQ(world.mainQueue->fireReadable(), 1);
    EXPECT_EQ(world.mainQueue->fireReadable(), 0) << "a request that stays would keep the loop awake";
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(LaterStarts, AreNotReceivedAfterTheEventsEnd) {
    launchAndSettle();
    listen();
    events.reset();
    EXPECT_THAT(log.calls(), ElementsAre("mainQueue.stopTimer", "mainQueue.stopWatching"));
    const auto next = SingleInstance::claim(folder.path(), name);
    EXPECT_TRUE(next && *next) << "the place is free again";
}

TEST_F(LaterStarts, BecomeTheInstanceWhileThisOneWaitsForItsEnd) {
    auto services = world.appServices();
    bool claimed = false;
    services.makeCleanupServices = [&] {
        auto cleanup = world.cleanup.services();
        cleanup.stopScanning = [&] {
            const auto next = SingleInstance::claim(folder.path(), name);
            claimed = next && *next;
        };
        return cleanup;
    };
    launchWith(std::move(services));
    listen();
    delegate->showCleanupWindow();
    events->applicationWillTerminate();
    EXPECT_TRUE(claimed);
    events->applicationWillTerminate();
}

TEST_F(LaterStarts, AreNotNeededWithoutAnInstance) {
    launchAndSettle();
    const ProcessEvents none(*world.mainQueue, shell, delegate, nullptr, -1);
    EXPECT_EQ(log.count("mainQueue.whenReadable"), 0);
}

class Termination : public AppDelegateFixture {
protected:
    RestoredSignals restored;
};

TEST_F(Termination, EndsTheLoopForEachSignal) {
    launchAndSettle();
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        const auto fd = catchTerminationSignals();
        ASSERT_TRUE(fd) << fd.error().message;
        const UniqueFd owned(*fd);
        const ProcessEvents events(*world.mainQueue, shell, delegate, nullptr, *fd);
        log.clear();
        EXPECT_EQ(world.mainQueue->fireReadable(), 0);
        ASSERT_EQ(raise(signal), 0);
        EXPECT_THAT(log.calls(), IsEmpty());
        EXPECT_EQ(world.mainQueue->fireReadable(), 1);
        EXPECT_THAT(log.calls(), ElementsAre("shell.terminate"));
        EXPECT_EQ(world.mainQueue->fireReadable(), 0) << "asked once";
    }
}

TEST_F(Termination, NeedsNoDelegate) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const UniqueFd readEnd(ends[0]);
    const UniqueFd writeEnd(ends[1]);
    const ProcessEvents events(*world.mainQueue, shell, {}, nullptr, readEnd.get());
    ASSERT_EQ(write(writeEnd.get(), "", 1), 1);
    EXPECT_EQ(world.mainQueue->fireReadable(), 1);
    EXPECT_EQ(log.count("shell.terminate"), 1);
}

TEST_F(Termination, IsNotWatchedAfterTheEventsEnd) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const UniqueFd readEnd(ends[0]);
    const UniqueFd writeEnd(ends[1]);
    std::make_unique<ProcessEvents>(*world.mainQueue, shell, std::weak_ptr<AppDelegate>(), nullptr, readEnd.get())
        .reset();
    ASSERT_EQ(write(writeEnd.get(), "", 1), 1);
    EXPECT_EQ(world.mainQueue->fireReadable(), 0);
    EXPECT_EQ(log.count("shell.terminate"), 0);
}

} // namespace

} // namespace vantry
