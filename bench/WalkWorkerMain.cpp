// walk-worker: what a question to a filesystem worker costs, beside a process that does nothing.

#include "cleanup/measuring/WorkerHost.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int usageError = 2;
constexpr std::chrono::minutes patience{1};

template <class Action>
double secondsOf(Action action) {
    const auto begin = std::chrono::steady_clock::now();
    if (!action()) {
        std::fputs("a process failed\n", stderr);
        std::exit(EXIT_FAILURE);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

bool startNothing() {
    char name[] = "/bin/true";
    char* arguments[] = {name, nullptr};
    pid_t pid = -1;
    int status = -1;
    return posix_spawn(&pid, name, nullptr, nullptr, arguments, environ) == 0 && waitpid(pid, &status, 0) == pid &&
           status == 0;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::fputs("Usage: walk-worker OMBREL EMPTY-FOLDER ROUNDS\n"
                   "Prints the medians, in seconds, of a process that does nothing, of a measurement of the folder\n"
                   "and of a listing, each started in turn.\n",
                   stderr);
        return usageError;
    }
    vantry::WorkerHost host({arguments[1], "/tmp"});
    const std::filesystem::path folder = arguments[2];
    std::vector<double> nothing;
    std::vector<double> measuring;
    std::vector<double> listing;
    for (int round = std::max(std::atoi(arguments[3]), 1); round > 0; --round) {
        nothing.push_back(secondsOf(startNothing));
        measuring.push_back(
            secondsOf([&] { return host.directoryMetrics(folder, vantry::deadlineIn(patience)).complete; }));
        listing.push_back(
            secondsOf([&] { return host.shallowChildren(folder, vantry::deadlineIn(patience)).complete; }));
    }
    std::printf("%.6f %.6f %.6f\n", median(nothing), median(measuring), median(listing));
}
