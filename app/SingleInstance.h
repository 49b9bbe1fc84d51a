#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace vantry {

/// What a second start asks of the running instance.
enum class InstanceRequest { showPopover, showCleanup };

/// The one Ombrel of a user session and home folder. It holds a lock, which the system releases however the process
/// ends, and listens on a socket beside it for what later starts ask. Main thread.
class SingleInstance {
public:
    /// Becomes the instance called `name` in `folder`. Null when another process is it already; an error when that
    /// cannot be told, so that the caller may go on without this.
    [[nodiscard]] static Result<std::unique_ptr<SingleInstance>> claim(const std::filesystem::path& folder,
                                                                       const std::string& name);
    /// Hands `request` to the running instance, waiting up to two seconds for one that is just starting.
    [[nodiscard]] static Result<void> ask(const std::filesystem::path& folder, const std::string& name,
                                          InstanceRequest request);

    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// Readable whenever a request waits.
    [[nodiscard]] int descriptor() const { return socket_.get(); }
    /// The next waiting request; absent when none waits. What is no request is passed over.
    [[nodiscard]] std::optional<InstanceRequest> receive();
    /// Dates lock and socket anew: the system removes what is some days old from the folder.
    void touch() const;

private:
    SingleInstance(UniqueFd lock, UniqueFd socket, std::filesystem::path socketPath);

    UniqueFd lock_;
    UniqueFd socket_;
    std::filesystem::path socketPath_;
};

/// The name that all starts with this home folder in this graphical session share.
[[nodiscard]] std::string instanceName(const std::filesystem::path& home, const std::string& session);

} // namespace vantry
