#pragma once

#include "cleanup/measuring/WorkerHost.h"
#include "tests/support/EndedChild.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>

namespace vantry {

namespace fs = std::filesystem;

/// A host with a temporary folder of its own. Every test must leave that folder empty and no child process behind.
class WorkerHostFixture : public testing::Test {
protected:
    explicit WorkerHostFixture(const fs::path& executable) : host({executable, temporary}) {
        fs::create_directory(temporary);
    }

    void TearDown() override {
        EXPECT_TRUE(fs::is_empty(temporary));
        EXPECT_FALSE(hasChildren());
        // A joined thread may stay visible for a moment.
        const auto patience = deadlineIn(std::chrono::seconds(10));
        while (resources() != resourcesBefore_ && !hasPassed(patience))
            std::this_thread::yield();
        EXPECT_EQ(resources(), resourcesBefore_);
    }

    [[nodiscard]] static Deadline farAway() { return deadlineIn(std::chrono::minutes(1)); }

    /// A folder whose name tells the double how to behave.
    [[nodiscard]] fs::path folder(const char* behaviour) const {
        fs::create_directories(root / behaviour);
        return root / behaviour;
    }

    /// Asks until the answer is complete, as a worker may be late on a machine that is busy.
    template <class Question>
    [[nodiscard]] static auto completeAnswer(Question question) {
        auto answer = question();
        for (int attempt = 0; attempt < 20 && !answer.complete; ++attempt)
            answer = question();
        return answer;
    }

    /// Kills the worker that notes its process number in `file`, as soon as it has. Gives up after 20 seconds.
    static void killNoted(const fs::path& file) {
        const auto patience = deadlineIn(std::chrono::seconds(20));
        std::string process;
        while (!process.ends_with('\n') && !hasPassed(patience)) {
            std::this_thread::yield();
            process = readFile(file);
        }
        if (!process.empty())
            kill(std::stoi(process), SIGKILL);
    }

    /// Open descriptors, threads; without these where a sanitizer starts one of its own.
    [[nodiscard]] static std::pair<std::ptrdiff_t, std::ptrdiff_t> resources() {
#ifdef OMBREL_THREAD_SANITIZER
        return {openDescriptorCount(), 0};
#else
        return {openDescriptorCount(), std::distance(fs::directory_iterator("/proc/self/task"), {})};
#endif
    }

    const TemporaryFolder root;
    const fs::path temporary = root / "temporary";
    WorkerHost host;

private:
    const std::pair<std::ptrdiff_t, std::ptrdiff_t> resourcesBefore_ = resources();
};

} // namespace vantry
