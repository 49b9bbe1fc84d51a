#pragma once

#include "base/Deadline.h"
#include "platform/ChildProcess.h"
#include "platform/StopSwitch.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// A child process that is read, ended and reaped without ever being waited for without a bound. Destroying this ends a
/// child that still runs: it is asked to (SIGTERM), killed 0.12 seconds later, and after 0.12 seconds more left behind,
/// stuck in a hung file system, to be reaped when it ends. One thread at a time.
class SupervisedChild {
public:
    /// Fails also once `stopSwitch`, which may be null, is stopped. From then on nothing is read either.
    [[nodiscard]] static Result<SupervisedChild> start(const std::filesystem::path& program,
                                                       const std::vector<std::string>& arguments, ChildOutput output,
                                                       std::shared_ptr<StopSwitch> stopSwitch = nullptr);

    SupervisedChild(SupervisedChild&&) noexcept = default;
    SupervisedChild& operator=(SupervisedChild&&) = delete;
    ~SupervisedChild();

    /// What the child writes until it ends; what others that hold its output write later is not waited for. Absent
    /// unless the child ends with a status of 0 to `highestStatus` before `deadline` and writes no more than `limit`
    /// bytes. Blocking.
    [[nodiscard]] std::optional<std::string> outputToEnd(std::size_t limit, Deadline deadline, int highestStatus = 0);

    /// The next line that the child writes, without its end. Absent when there is none before `deadline` or the end of
    /// the output, and when more than `limit` bytes come without one. Blocking.
    [[nodiscard]] std::optional<std::string> nextLine(std::size_t limit, Deadline deadline);

private:
    SupervisedChild(ChildProcess child, std::shared_ptr<StopSwitch> stopSwitch, StopSwitch::Work work);

    [[nodiscard]] bool mayHaveMore(Deadline deadline);
    [[nodiscard]] bool readPiece();
    void wait(Deadline deadline);
    [[nodiscard]] bool endsWithin(std::chrono::milliseconds patience);

    std::shared_ptr<StopSwitch> stopSwitch_;
    StopSwitch::Work work_;
    ChildProcess child_;
    std::string pending_; ///< read and not given out
    bool isReading_;      ///< the output is open
};

} // namespace vantry
