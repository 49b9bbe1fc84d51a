// How many threads and descriptors measuring takes.

#include "cleanup/measuring/DirectoryMetrics.h"
#include "tests/support/DeepTree.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <thread>

namespace vantry::CleanupScanner {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// What one process may have at a time.
const unsigned threadsAllowed = std::clamp(std::thread::hardware_concurrency(), 1U, 4U);
constexpr unsigned descriptorsAllowedForEachThread = 56; // four times that, and some of the process's own, are 256

struct Resources {
    std::ptrdiff_t threads = 0;
    std::ptrdiff_t descriptors = 0;
};

Resources resources() { return {std::distance(fs::directory_iterator("/proc/self/task"), {}), openDescriptorCount()}; }

/// The most that this process used during `work`, beyond what it used before.
template <class Work>
Resources mostDuring(Work work) {
    std::atomic<bool> isReady = false;
    std::atomic<bool> isDone = false;
    Resources before;
    Resources most;
    std::thread watcher([&] {
        before = resources();
        isReady = true;
        while (!isDone) {
            const auto [threads, descriptors] = resources();
            most.threads = std::max(most.threads, threads - before.threads);
            most.descriptors = std::max(most.descriptors, descriptors - before.descriptors);
        }
    });
    while (!isReady)
        std::this_thread::yield();
    work();
    isDone = true;
    watcher.join();
    return most;
}

} // namespace

TEST(MeasuringChildren, TakesNoMoreThreadsAndDescriptorsThanAllowedHoweverManyAreLarge) {
    const TemporaryFolder root(folderForManyFiles());
    // Large and deep folders. Each of them alone could occupy all threads.
    for (unsigned i = 0; i < std::max(threadsAllowed, 2U); ++i)
        for (int k = 0; k < 12; ++k) {
            const fs::path folder = root / std::to_string(i) / std::to_string(k);
            fs::create_directories(folder);
            UniqueFd fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            for (int file = 0; file < 200; ++file)
                makeFileIn(fd, std::to_string(file));
            for (int level = 0; level < 90; ++level) {
                fd = makeFolderIn(fd, "d");
                makeFileIn(fd, "file");
            }
        }
    const auto most = mostDuring([&] {
        for (int round = 0; round < 6; ++round)
            static_cast<void>(childrenMetricsInProcess(root.path(), deadlineIn(1min)));
    });
    removeDeepTree(root.path());
    // A replaced thread may stay visible for a moment.
    EXPECT_LE(most.threads, 2 * (threadsAllowed - 1));
    EXPECT_LE(most.descriptors, threadsAllowed * descriptorsAllowedForEachThread);
    EXPECT_GT(most.descriptors, 40) << "some folders have to be deep";
}

} // namespace vantry::CleanupScanner
