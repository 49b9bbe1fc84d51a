#include "platform/ProgramOutput.h"

#include "platform/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <unistd.h>

namespace vantry {

namespace {

constexpr std::chrono::milliseconds patienceAfterKilling{200};

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

// Whether the child has written its last before `deadline`, no more than `limit` bytes.
bool readToEnd(const ChildProcess& child, std::string& output, std::size_t limit, Deadline deadline) {
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): written by the call
    while (!hasPassed(deadline)) {
        const ssize_t length = read(child.output(), buffer.data(), buffer.size());
        if (length == 0)
            return true;
        if (length > 0) {
            output.append(buffer.data(), static_cast<std::size_t>(length));
            if (output.size() > limit)
                return false;
        } else if (errno == EAGAIN) {
            pollfd readable{child.output(), POLLIN, 0};
            poll(&readable, 1, millisecondsUntil(deadline));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return false;
}

bool endsUntil(ChildProcess& child, Deadline deadline) {
    while (!child.exitStatus() && !hasPassed(deadline)) {
        pollfd ended{child.exitDescriptor(), POLLIN, 0};
        poll(&ended, 1, millisecondsUntil(deadline));
    }
    return child.exitStatus().has_value();
}

} // namespace

std::optional<std::string> programOutput(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments, std::size_t limit,
                                         Deadline deadline) {
    auto child = ChildProcess::start(program, arguments, ChildOutput::pipe);
    if (!child)
        return std::nullopt;
    std::string output;
    if (readToEnd(*child, output, limit, deadline) && endsUntil(*child, deadline))
        return child->exitStatus() == 0 ? std::optional(std::move(output)) : std::nullopt;
    child->sendSignal(SIGKILL);
    endsUntil(*child, deadlineIn(patienceAfterKilling));
    return std::nullopt;
}

} // namespace vantry
