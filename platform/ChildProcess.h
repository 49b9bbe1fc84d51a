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

/// A child process. It inherits nothing but its standard descriptors and the environment, and starts with no signal
/// blocked or ignored. Nothing here waits. Destroying this does not end the child; a thread that lives as long as the
/// child reaps it then, so that it leaves no zombie (it does where no thread can be started). One thread at a time.
class ChildProcess {
public:
    /// Starts `program` with `arguments` (its own name not among them).
    [[nodiscard]] static Result<ChildProcess> start(const std::filesystem::path& program,
                                                    const std::vector<std::string>& arguments, ChildOutput output);

    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    /// The reading end of the child's standard output, not blocking; -1 without a pipe.
    [[nodiscard]] int output() const { return output_.get(); }
    /// Readable, for `poll`, once the child has ended.
    [[nodiscard]] int exitDescriptor() const { return exit_.get(); }

    /// How the child ended; absent while it runs. With the first answer it is reaped.
    /// An exit status of 0 to 255, or 256 and more for a child that a signal ended.
    [[nodiscard]] std::optional<int> exitStatus();
    /// Does nothing once the child was seen to have ended.
    void sendSignal(int signal);

private:
    ChildProcess(pid_t pid, UniqueFd exit, UniqueFd output);

    pid_t pid_;
    UniqueFd exit_;
    UniqueFd output_;
    std::optional<int> status_;
};

/// What `ChildProcess` starts to get another process of the running executable, also when its file was replaced or
/// removed since (on Linux; on macOS the file that stands there now). Any thread.
[[nodiscard]] Result<std::filesystem::path> ownExecutable();

} // namespace vantry
