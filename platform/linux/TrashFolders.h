#pragma once

#include "base/UniqueFd.h"

#include <cerrno>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// Makes a system call and repeats it a bounded number of times after EINTR or EAGAIN. Returns an errno, 0 on success.
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

/// `what` and the reason in plain words: "it could not be moved: the disk is full".
[[nodiscard]] std::string trashError(std::string_view what, int errorNumber);

/// Syncs what `fd` is open for to the disk. Returns an errno, 0 on success and on file systems that do not support it.
[[nodiscard]] int syncToDisk(int fd);

/// The path of the file or folder of a descriptor, according to the system. The caller checks whether it is still
/// there.
[[nodiscard]] std::optional<std::filesystem::path> pathOfDescriptor(int fd);

/// The folders of a Trash, held open. They belong to this user and are not links.
class TrashFolders {
public:
    /// Creates missing folders with mode 0700. The folders above `trash` may be links; the Trash and its folders may
    /// not. An error is a phrase. Blocking; any thread.
    [[nodiscard]] static std::expected<TrashFolders, std::string> open(const std::filesystem::path& trash);

    [[nodiscard]] int files() const { return files_.get(); }
    [[nodiscard]] int info() const { return info_.get(); }

    /// The path of an item of `files`, also after the Trash was moved.
    [[nodiscard]] std::filesystem::path itemPath(const std::string& name) const;
    /// Whether the paths still lead to these folders.
    [[nodiscard]] bool areInPlace() const;

private:
    TrashFolders(std::filesystem::path path, UniqueFd trash, UniqueFd files, UniqueFd info);

    std::filesystem::path path_;
    UniqueFd trash_;
    UniqueFd files_;
    UniqueFd info_;
};

} // namespace vantry
