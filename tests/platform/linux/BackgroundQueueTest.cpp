#include "platform/BackgroundQueue.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace vantry {

namespace {

int nicenessOfThisThread() { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); }

// Before any test has had a block run.
const int nicenessAtStart = nicenessOfThisThread();

int nicenessOfABlock(QualityOfService quality) {
    const auto answer = std::make_shared<std::promise<int>>();
    auto niceness = answer->get_future();
    makeBackgroundQueue()->submit(quality, [answer] { answer->set_value(nicenessOfThisThread()); });
    return niceness.get();
}

} // namespace

TEST(LinuxBackgroundQueue, AUtilityBlockHasALowerPriority) {
    if (nicenessAtStart >= 5)
        GTEST_SKIP() << "this process gives way already";
    EXPECT_EQ(nicenessOfABlock(QualityOfService::utility), 5);
    EXPECT_EQ(nicenessOfThisThread(), nicenessAtStart) << "the priority is the thread's, not the process's";
}

TEST(LinuxBackgroundQueue, ABlockThatTheUserWaitsForKeepsThePriorityOfTheProcess) {
    EXPECT_EQ(nicenessOfABlock(QualityOfService::userInitiated), nicenessAtStart);
}

TEST(LinuxBackgroundQueue, ABlockRunsOnTheCallersThreadWhenNoneCanBeStarted) {
    const std::string answer = inChildProcess([]() -> std::string {
        const rlimit none = {0, 0};
        if (!becomeUser(unknownUser()) || setrlimit(RLIMIT_NPROC, &none) != 0)
            return "no limit";
        const auto caller = std::this_thread::get_id();
        std::string ran = "never ran";
        makeBackgroundQueue()->submit(QualityOfService::userInitiated, [&ran, caller] {
            ran = std::this_thread::get_id() == caller ? "on the caller's thread" : "on another thread";
        });
        return ran;
    });
    if (answer == "no limit")
        GTEST_SKIP() << "the number of threads cannot be limited here";
    EXPECT_EQ(answer, "on the caller's thread");
}

} // namespace vantry
