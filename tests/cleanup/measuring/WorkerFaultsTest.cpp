// Workers that misbehave, and systems that refuse what workers need.

#include "cleanup/measuring/WorkerHost.h"
#include "tests/cleanup/measuring/WorkerHostFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RecordedPolls.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <utility>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

/// How long a question may take: half a second, 0.2 seconds of grace, twice 0.12 seconds to end the worker, and what
/// was rounded up.
constexpr std::chrono::milliseconds bound{950};

class FaultyWorkers : public WorkerHostFixture {
protected:
    FaultyWorkers() : WorkerHostFixture(OMBREL_WORKER_DOUBLE) {}

    template <class Answer>
    void expectNoAnswer(const char* behaviour, Answer (WorkerHost::*ask)(const fs::path&, Deadline)) {
        RecordedPolls::forget();
        EXPECT_EQ((host.*ask)(folder(behaviour), farAway()), Answer{}) << behaviour;
        EXPECT_LE(RecordedPolls::waitedInVain(), bound) << behaviour;
    }

    /// A program and a folder that every user may reach.
    [[nodiscard]] std::pair<fs::path, fs::path> openForAll() const {
        fs::copy_file(OMBREL_WORKER_DOUBLE, root / "worker");
        const fs::path asked = folder("answers");
        for (const auto& open : {root.path(), asked, temporary})
            fs::permissions(open, fs::perms::all);
        return {root / "worker", asked};
    }
};

} // namespace

TEST_F(FaultyWorkers, AreEndedInTimeAndNotBelieved) {
    for (const char* behaviour :
         {"hangs", "hangs-while-writing", "hangs-after-writing", "ignores-the-request-to-end", "stops-itself",
          "writes-without-end", "writes-too-much", "closes-its-output-and-lives-on", "fails-after-a-good-answer",
          "kills-itself", "writes-nothing", "writes-garbage", "writes-more-after-its-answer",
          "answers-the-other-question", "leaves-the-folder", "no-such-behaviour"}) {
        expectNoAnswer(behaviour, &WorkerHost::directoryMetrics);
        expectNoAnswer(behaviour, &WorkerHost::shallowChildren);
        EXPECT_FALSE(hasChildren()) << behaviour;
    }
    // Children are measured by the same worker, so one behaviour of each kind is enough.
    for (const char* behaviour : {"hangs-while-writing", "hangs-after-writing", "fails-after-a-good-answer",
                                  "writes-nothing", "writes-garbage", "writes-more-after-its-answer"})
        expectNoAnswer(behaviour, &WorkerHost::childrenMetrics);
}

TEST_F(FaultyWorkers, LeaveNoListBehindAHostThatIsAskedToEnd) {
    const fs::path asked = folder("hangs-after-writing");
    const pid_t child = fork();
    if (child == 0) {
        WorkerHost own({OMBREL_WORKER_DOUBLE, temporary});
        static_cast<void>(own.shallowChildren(asked, farAway()));
        _exit(0); // the request was lost
    }
    while (fs::is_empty(temporary))
        std::this_thread::yield();
    kill(child, SIGTERM);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_TRUE(fs::is_empty(temporary));
}

TEST_F(FaultyWorkers, AreEndedEarlierWhenTheDeadlineIsNearer) {
    constexpr auto ending = 2 * 120ms + 5ms;
    RecordedPolls::forget();
    EXPECT_EQ(host.directoryMetrics(folder("hangs"), deadlineIn(100ms)), DirectoryMetrics{});
    EXPECT_LE(RecordedPolls::waitedInVain(), 100ms + 200ms + ending);
    RecordedPolls::forget();
    EXPECT_EQ(host.shallowChildren(folder("hangs"), deadlineIn(100ms)), ShallowChildren{});
    EXPECT_LE(RecordedPolls::waitedInVain(), 100ms + ending);
}

TEST_F(FaultyWorkers, AreEndedAndLeaveNoListWhenTheSwitchIsStopped) {
    for (const char* behaviour : {"hangs-after-writing", "ignores-the-request-to-end", "answers"}) {
        const auto stopSwitch = StopSwitch::create().value();
        const fs::path asked = folder(behaviour);
        std::atomic<int> unanswered = 0;
        std::thread scan([&] {
            WorkerHost stopped({OMBREL_WORKER_DOUBLE, temporary, stopSwitch});
            while (!stopSwitch->isStopped())
                static_cast<void>(stopped.shallowChildren(asked, farAway()));
            fs::remove(asked / "started");
            unanswered += stopped.shallowChildren(asked, farAway()) == ShallowChildren{} ? 1 : 0;
            unanswered += stopped.directoryMetrics(asked, farAway()) == DirectoryMetrics{} ? 1 : 0;
            unanswered += stopped.childrenMetrics(asked, farAway()) == ChildrenMetrics{} ? 1 : 0;
            const std::vector files{asked / "file"};
            const std::vector<std::string> keys{"Name"};
            unanswered += stopped.propertyListTexts(files, keys, farAway()).complete ? 0 : 1;
        });
        while (!fs::exists(asked / "started"))
            std::this_thread::yield();
        while (!stopSwitch->stop()) { // it may take longer on a machine that is busy
        }
        EXPECT_TRUE(fs::is_empty(temporary)) << behaviour;
        EXPECT_FALSE(hasChildren()) << behaviour;
        scan.join();
        EXPECT_EQ(unanswered, 4) << behaviour;
        EXPECT_FALSE(fs::exists(asked / "started")) << behaviour;
    }
}

TEST_F(FaultyWorkers, ThatAreKilledFromOutsideAreNotBelieved) {
    for (const bool measuring : {true, false}) {
        const fs::path asked = folder("waits-to-be-killed");
        fs::remove(asked / "process");
        std::thread killer([&] { killNoted(asked / "process"); });
        if (measuring)
            expectNoAnswer("waits-to-be-killed", &WorkerHost::directoryMetrics);
        else
            expectNoAnswer("waits-to-be-killed", &WorkerHost::shallowChildren);
        killer.join();
    }
}

// As a user who may reach nothing but this test's folder, and is not root, who may do everything.
TEST_F(FaultyWorkers, FindTheirListWhateverTheUmask) {
    const auto [program, asked] = openForAll();
    const std::string said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no user";
        umask(0777);
        WorkerHost other({program, temporary});
        return completeAnswer([&] { return other.shallowChildren(asked, farAway()); }).complete ? "a list" : "nothing";
    });
    if (said == "no user")
        GTEST_SKIP() << "no right to become another user";
    EXPECT_EQ(said, "a list");
}

TEST_F(FaultyWorkers, ThatCannotBeStartedBecauseThereAreTooManyProcesses) {
    const auto [program, asked] = openForAll();
    const std::string said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no user";
        WorkerHost limited({program, temporary});
        if (!completeAnswer([&] { return limited.directoryMetrics(asked, farAway()); }).complete)
            return "no answer without a limit";
        const rlimit one = {1, 1};
        if (setrlimit(RLIMIT_NPROC, &one) != 0)
            return "no limit";
        if (limited.directoryMetrics(asked, farAway()) != DirectoryMetrics{} ||
            limited.shallowChildren(asked, farAway()) != ShallowChildren{})
            return "an answer";
        return "nothing";
    });
    if (said == "no user")
        GTEST_SKIP() << "no right to become another user";
    EXPECT_EQ(said, "nothing");
}

TEST_F(FaultyWorkers, ThatCannotBeStartedBecauseThereAreNoDescriptors) {
    const std::string said = inChildProcess([&]() -> std::string {
        const fs::path asked = folder("answers");
        const rlimit few = {static_cast<rlim_t>(openDescriptorCount()) + 16, 64};
        if (setrlimit(RLIMIT_NOFILE, &few) != 0)
            return "no limit";
        WorkerHost limited({OMBREL_WORKER_DOUBLE, temporary});
        std::vector<UniqueFd> all;
        for (UniqueFd fd(dup(0)); fd; fd = UniqueFd(dup(0)))
            all.push_back(std::move(fd));
        // With no free descriptor, then with one, and so on until there are enough.
        for (; !all.empty(); all.pop_back()) {
            const auto answer = limited.directoryMetrics(asked, farAway());
            if (hasChildren())
                return "a child";
            if (answer.complete)
                return "answered in the end";
            if (answer != DirectoryMetrics{})
                return "half an answer";
        }
        return "no answer";
    });
    EXPECT_EQ(said, "answered in the end");
}

/// What a host answers when `prepare` has mounted something over its temporary folder, for this process only.
template <class Prepare>
std::string listWithTemporaryFolder(const fs::path& asked, const fs::path& temporaryFolder, Prepare prepare) {
    return inChildProcess([&]() -> std::string {
        if (!keepMountsPrivate() || !prepare())
            return "no right";
        WorkerHost host({OMBREL_EXECUTABLE, temporaryFolder});
        const auto answer = host.shallowChildren(asked, deadlineIn(1min));
        // Measuring does not need the folder.
        for (int attempt = 0; attempt < 20; ++attempt)
            if (host.directoryMetrics(asked, deadlineIn(1min)).complete) {
                std::string left;
                for (const auto& entry : fs::directory_iterator(temporaryFolder))
                    left += " " + entry.path().filename().native();
                return (answer == ShallowChildren{} ? "nothing, leaves" : "a list, leaves") + left;
            }
        return "no measures";
    });
}

TEST_F(FaultyWorkers, WithoutATemporaryFolderMeasureButDoNotList) {
    fs::create_directory(root / "asked");
    writeFile(root / "asked/file", "1");
    WorkerHost homeless({OMBREL_EXECUTABLE, root / "missing"});
    EXPECT_EQ(homeless.shallowChildren(root / "asked", farAway()), ShallowChildren{});
    EXPECT_TRUE(completeAnswer([&] { return homeless.directoryMetrics(root / "asked", farAway()); }).complete);
    EXPECT_FALSE(fs::exists(root / "missing"));
}

TEST_F(FaultyWorkers, WithATemporaryFolderThatTakesNoFileMeasureButDoNotList) {
    const fs::path asked = folder("asked");
    writeFile(asked / "file", "1");
    struct Case {
        const char* options;
        unsigned long flags;
        bool isFull;
        const char* answer;
    };
    for (const auto& [options, flags, isFull, answer] : {Case{"size=4k", 0, true, "nothing, leaves full"},
                                                         {"nr_inodes=1", 0, false, "nothing, leaves"},
                                                         {"", MS_RDONLY, false, "nothing, leaves"}}) {
        const std::string said = listWithTemporaryFolder(asked, temporary, [&] {
            const bool isMounted = mount("none", temporary.c_str(), "tmpfs", flags, options) == 0;
            if (isMounted && isFull)
                writeFile(temporary / "full", std::string(4096, '1'));
            return isMounted;
        });
        if (said == "no right")
            GTEST_SKIP() << "no right to mount a temporary folder";
        EXPECT_EQ(said, answer) << options;
    }
}

} // namespace vantry
