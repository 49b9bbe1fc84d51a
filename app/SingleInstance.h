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

/// The only running Ombrel of a user session and home folder. It holds a lock, which the system releases however the
/// process ends, and listens on a socket for requests of later starts. Main thread.
class SingleInstance {
public:
    /// Becomes the instance called `name` in `folder`. Null if another process already is; an error if that is unknown,
    /// and the caller may continue without an instance.
    [[nodiscard]] static Result<std::unique_ptr<SingleInstance>> claim(const std::filesystem::path& folder,
                                                                       const std::string& name);
    /// Sends `request` to the running instance. Waits up to two seconds for one that is still starting.
    [[nodiscard]] static Result<void> ask(const std::filesystem::path& folder, const std::string& name,
                                          InstanceRequest request);

    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// Readable whenever a request waits.
    [[nodiscard]] int descriptor() const { return socket_.get(); }
    /// The next waiting request, if any. Unknown messages are skipped.
    [[nodiscard]] std::optional<InstanceRequest> receive();
    /// Updates the timestamps of the lock and the socket, because the system removes old files from the folder.
    void touch() const;

private:
    SingleInstance(UniqueFd lock, UniqueFd socket, std::filesystem::path socketPath);

    UniqueFd lock_;
    UniqueFd socket_;
    std::filesystem::path socketPath_;
};

/// The instance name for this home folder and graphical session.
[[nodiscard]] std::string instanceName(const std::filesystem::path& home, const std::string& session);

} // namespace vantry
