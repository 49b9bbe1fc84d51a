#include "platform/SupervisedChild.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr std::chrono::milliseconds stopPatience{120}; // after SIGTERM, and again after SIGKILL

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

} // namespace

Result<SupervisedChild> SupervisedChild::start(const std::filesystem::path& program,
                                               const std::vector<std::string>& arguments, ChildOutput output,
                                               std::shared_ptr<StopSwitch> stopSwitch) {
    auto work = StopSwitch::beginWork(stopSwitch);
    if (!work)
        return std::unexpected(work.error());
    auto child = ChildProcess::start(program, arguments, output);
    if (!child)
        return std::unexpected(child.error());
    return SupervisedChild(std::move(*child), std::move(stopSwitch), std::move(*work));
}

SupervisedChild::SupervisedChild(ChildProcess child, std::shared_ptr<StopSwitch> stopSwitch, StopSwitch::Work work)
    : stopSwitch_(std::move(stopSwitch)),
      work_(std::move(work)),
      child_(std::move(child)) {}

SupervisedChild::~SupervisedChild() {
    for (const int signal : {SIGTERM, SIGKILL}) {
        if (child_.exitStatus())
            return;
        child_.sendSignal(signal);
        if (endsWithin(stopPatience))
            return;
    }
}

std::optional<std::string> SupervisedChild::outputToEnd(std::size_t limit, Deadline deadline, int highestStatus) {
    while (pending_.size() <= limit && mayHaveMore(deadline)) {
    }
    const auto status = child_.exitStatus();
    if (pending_.size() > limit || !status || *status > highestStatus)
        return std::nullopt;
    return std::exchange(pending_, {});
}

std::optional<std::string> SupervisedChild::nextLine(std::size_t limit, Deadline deadline) {
    for (std::size_t searched = 0;;) {
        if (const auto end = pending_.find('\n', searched); end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        searched = pending_.size();
        if (searched > limit || !mayHaveMore(deadline))
            return std::nullopt;
    }
}

// Reads some output or waits for it. False when the child has ended, the deadline has passed or the switch is stopped.
bool SupervisedChild::mayHaveMore(Deadline deadline) {
    // Asked before reading: what the child wrote is in the pipe when it ends.
    const bool hasEnded = child_.exitStatus().has_value();
    const bool isLate = hasPassed(deadline) || (stopSwitch_ && stopSwitch_->isStopped());
    if (isLate && !hasEnded)
        return false;
    if (readPiece())
        return true;
    if (isLate || hasEnded)
        return false;
    wait(deadline);
    return true;
}

// Returns whether there was something to read.
bool SupervisedChild::readPiece() {
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): written by the call
    const ssize_t length = read(child_.output(), buffer.data(), buffer.size());
    if (length > 0)
        pending_.append(buffer.data(), static_cast<std::size_t>(length));
    isOpen_ = length != 0; // a failure tells that there is nothing yet, or no output at all, which is not polled either
    return length > 0;
}

// A closed output stays readable, so it is not polled any longer.
void SupervisedChild::wait(Deadline deadline) {
    std::array<pollfd, 3> events{{{child_.exitDescriptor(), POLLIN, 0},
                                  {isOpen_ ? child_.output() : -1, POLLIN, 0},
                                  {stopSwitch_ ? stopSwitch_->descriptor() : -1, POLLIN, 0}}};
    poll(events.data(), events.size(), millisecondsUntil(deadline));
}

bool SupervisedChild::endsWithin(std::chrono::milliseconds patience) {
    const auto deadline = deadlineIn(patience);
    while (!child_.exitStatus() && !hasPassed(deadline)) {
        pollfd ended{child_.exitDescriptor(), POLLIN, 0};
        poll(&ended, 1, millisecondsUntil(deadline));
    }
    return child_.exitStatus().has_value();
}

std::optional<std::string> programOutput(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments, std::size_t limit,
                                         Deadline deadline, int highestStatus) {
    if (hasPassed(deadline))
        return std::nullopt;
    auto child = SupervisedChild::start(program, arguments, ChildOutput::pipe);
    return child ? child->outputToEnd(limit, deadline, highestStatus) : std::nullopt;
}

} // namespace vantry
