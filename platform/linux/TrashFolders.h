#pragma once

#include "base/UniqueFd.h"

#include <cerrno>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// Makes a system call, and makes it again, a bounded number of times, where it was disturbed. An error is an errno, no
/// error is 0.
template <class Call>
[[nodiscard]] int errorOf(Call call) {
    constexpr int attempts = 16;
    for (int left = attempts; left > 0; --left) {
        if (call() >= 0)
            return 0;
        if (errno != EINTR && errno != EAGAIN)
            break;
    }
    return errno;
}

/// `what`, and why in words that users understand: "it could not be moved: the disk is full".
[[nodiscard]] std::string trashError(std::string_view what, int errorNumber);

/// Waits until what `fd` stands for is on the disk. An error is an errno, no error is 0: also where the file system has
/// no such thing.
[[nodiscard]] int syncToDisk(int fd);

/// Where the file or folder of a descriptor is, as the system tells. Whether it is there still is for the caller to
/// look at.
[[nodiscard]] std::optional<std::filesystem::path> pathOfDescriptor(int fd);

/// The folders of a Trash, held open. They are of this user and no links.
class TrashFolders {
public:
    /// Makes what is missing, with the rights of its user alone. The folders above `trash` are the user's own affair
    /// and may be links; the Trash and its folders may not be. An error is a phrase. Blocking; any thread.
    [[nodiscard]] static std::expected<TrashFolders, std::string> open(const std::filesystem::path& trash);

    [[nodiscard]] int files() const { return files_.get(); }
    [[nodiscard]] int info() const { return info_.get(); }

    /// Where an item of `files` is, also when the Trash was moved away.
    [[nodiscard]] std::filesystem::path itemPath(const std::string& name) const;
    /// Whether the paths lead to these folders still.
    [[nodiscard]] bool areInPlace() const;

private:
    TrashFolders(std::filesystem::path path, UniqueFd trash, UniqueFd files, UniqueFd info);

    std::filesystem::path path_;
    UniqueFd trash_;
    UniqueFd files_;
    UniqueFd info_;
};

} // namespace vantry
