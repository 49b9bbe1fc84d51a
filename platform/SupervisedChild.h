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

/// A child process whose output is read with bounded waits. The destructor ends a running child: SIGTERM, SIGKILL after
/// 0.12 seconds, and after 0.12 seconds more a child that hangs in a file system is left behind and reaped when it
/// ends. One thread at a time.
class SupervisedChild {
public:
    /// `stopSwitch` may be null. Once it is stopped this fails, and nothing more is read.
    [[nodiscard]] static Result<SupervisedChild> start(const std::filesystem::path& program,
                                                       const std::vector<std::string>& arguments, ChildOutput output,
                                                       std::shared_ptr<StopSwitch> stopSwitch = nullptr);

    SupervisedChild(SupervisedChild&&) noexcept = default;
    SupervisedChild& operator=(SupervisedChild&&) = delete;
    ~SupervisedChild();

    /// What the child writes until it ends; later output of its own children is not waited for. Absent unless the child
    /// exits with a status of 0 to `highestStatus` before `deadline` and writes no more than `limit` bytes. Blocking.
    [[nodiscard]] std::optional<std::string> outputToEnd(std::size_t limit, Deadline deadline, int highestStatus = 0);

    /// The next line of the output, without the line break. Absent when none is complete before `deadline` or the end
    /// of the output, or a line is longer than `limit` bytes. Blocking.
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
    std::string pending_; ///< read but not returned yet
    bool isOpen_ = true;  ///< the output, as far as is known
};

/// What `program` writes to its standard output. Absent unless it exits with a status of 0 to `highestStatus` before
/// `deadline` and writes no more than `limit` bytes; otherwise it is ended, which takes a quarter of a second at most.
/// Blocking; any thread.
[[nodiscard]] std::optional<std::string> programOutput(const std::filesystem::path& program,
                                                       const std::vector<std::string>& arguments, std::size_t limit,
                                                       Deadline deadline, int highestStatus = 0);

} // namespace vantry
