// walk: one walk of a tree, measured.

#include "platform/DirectoryWalk.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr int usageError = 2;

// The most memory that this process has had, in KiB.
long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::atol(line.c_str() + 6);
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3 || count > 4) {
        std::fputs("Usage: walk FOLDER THREADS [SECONDS]\n"
                   "Prints what the walk took in seconds, the files, the bytes, whether it is complete, and the most\n"
                   "memory of this process in KiB.\n",
                   stderr);
        return usageError;
    }
    using Seconds = std::chrono::duration<double>;
    const Seconds limit(count > 3 ? std::atof(arguments[3]) : 3600.0);
    const auto begin = std::chrono::steady_clock::now();
    const auto totals = vantry::walkTree(
        arguments[1], begin + std::chrono::duration_cast<std::chrono::nanoseconds>(limit),
        std::make_shared<vantry::SpareThreads>(static_cast<unsigned>(std::max(std::atoi(arguments[2]), 1) - 1)));
    const Seconds took = std::chrono::steady_clock::now() - begin;
    std::printf("%.6f %lld %lld %s %ld\n", took.count(), static_cast<long long>(totals.regularFiles),
                static_cast<long long>(totals.allocatedBytes), totals.complete ? "complete" : "cut-short",
                peakMemory());
}
