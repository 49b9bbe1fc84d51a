#pragma once

#include "base/Deadline.h"
#include "platform/ChildProcess.h"

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vantry {

struct EndedChild {
    int status = 0; ///< as `ChildProcess` tells it
    std::string output;

    bool operator==(const EndedChild&) const = default;
};

inline void PrintTo(const EndedChild& ended, std::ostream* stream) {
    *stream << "status " << ended.status << ", output \"" << ended.output << '"';
}

/// Reads a child's output to its end and waits for the child's. One that has not ended after half a minute is killed.
[[nodiscard]] inline EndedChild endOf(ChildProcess& child) {
    constexpr int patience = 30'000; // milliseconds
    EndedChild ended;
    std::array<char, 65536> buffer{};
    for (bool reading = child.output() >= 0; reading;) {
        pollfd event{child.output(), POLLIN, 0};
        if (poll(&event, 1, patience) <= 0)
            break;
        const ssize_t length = read(child.output(), buffer.data(), buffer.size());
        reading = length > 0;
        ended.output.append(buffer.data(), reading ? static_cast<std::size_t>(length) : 0);
    }
    pollfd event{child.exitDescriptor(), POLLIN, 0};
    if (poll(&event, 1, patience) <= 0) {
        child.sendSignal(SIGKILL);
        poll(&event, 1, patience);
    }
    ended.status = child.exitStatus().value_or(-1);
    return ended;
}

/// Starts `program` and does the same. A status of -1 is that of one that could not be started.
[[nodiscard]] inline EndedChild endOf(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    auto child = ChildProcess::start(program, arguments, ChildOutput::pipe);
    return child ? endOf(*child) : EndedChild{.status = -1, .output = child.error().message};
}

/// Whether this process has children, ended ones that were not waited for among them.
[[nodiscard]] inline bool hasChildren() {
    siginfo_t info = {};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// How many of those there are, as far as the calling thread started them. On Linux.
[[nodiscard]] inline int childCount() {
    std::ifstream list("/proc/thread-self/children");
    int count = 0;
    for (pid_t child = 0; list >> child;)
        ++count;
    return count;
}

/// Waits until no more than `count` are left, for half a minute at most.
inline void waitUntilChildrenAre(int count) {
    const auto patience = deadlineIn(std::chrono::seconds(30));
    while (childCount() > count && !hasPassed(patience))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace vantry
