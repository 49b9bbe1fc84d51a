#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vantry {

/// Where a child's standard output goes; its standard input and error are the null device.
enum class ChildOutput { nullDevice, pipe };

/// A child process. It inherits only its standard descriptors and the environment, and starts with no signal blocked or
/// ignored. Nothing here waits. The destructor does not end the child, but starts a thread that reaps it, so that it
/// leaves no zombie unless no thread can be started. One thread at a time.
class ChildProcess {
public:
    /// Starts `program` with `arguments` (without its own name).
    [[nodiscard]] static Result<ChildProcess> start(const std::filesystem::path& program,
                                                    const std::vector<std::string>& arguments, ChildOutput output);

    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    /// The reading end of the child's standard output, not blocking; -1 without a pipe.
    [[nodiscard]] int output() const { return output_.get(); }
    /// Readable, for `poll`, once the child has ended.
    [[nodiscard]] int exitDescriptor() const { return exit_.get(); }

    /// The exit status of 0 to 255, or 256 and more for a child that a signal ended; absent while it runs. The first
    /// answer reaps the child.
    [[nodiscard]] std::optional<int> exitStatus();
    /// Does nothing after `exitStatus` has returned a status.
    void sendSignal(int signal);

private:
    ChildProcess(pid_t pid, UniqueFd exit, UniqueFd output);

    pid_t pid_;
    UniqueFd exit_;
    UniqueFd output_;
    std::optional<int> status_;
};

/// The program for `ChildProcess` to start the running executable again, on Linux even if its file was replaced or
/// removed. On macOS the file at its path is started. Any thread.
[[nodiscard]] Result<std::filesystem::path> ownExecutable();

} // namespace vantry
