#pragma once

#include "base/UniqueFd.h"

#include <expected>
#include <filesystem>

namespace vantry {

/// How a link at the end of a path is treated.
enum class FinalLink { isOpened, isFollowed };

/// Opens the item at `path` for its path alone (O_PATH), but only where that takes no longer than a disk of this
/// machine does: what the kernel has in memory is found whatever the file system is; the rest is asked for on file
/// systems that answer by themselves, and not on those of a network or of another process. The error is an errno;
/// EAGAIN means that somebody would have to be waited for.
[[nodiscard]] std::expected<UniqueFd, int> openPromptly(const std::filesystem::path& path, FinalLink link);

/// Whether the file system of an open item answers by itself. Asks nobody.
[[nodiscard]] bool isOnPromptFileSystem(int fd);

} // namespace vantry
