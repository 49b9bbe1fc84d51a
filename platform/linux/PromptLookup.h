#pragma once

#include "base/UniqueFd.h"

#include <expected>
#include <filesystem>

namespace vantry {

/// How a link at the end of a path is treated.
enum class FinalLink { isOpened, isFollowed };

/// Opens the item at `path` with O_PATH without waiting for a server or for another process. What the kernel has cached
/// is found on any file system; anything else only on local ones. The error is an errno; EAGAIN means that the lookup
/// would have to wait.
[[nodiscard]] std::expected<UniqueFd, int> openPromptly(const std::filesystem::path& path, FinalLink link);

/// Whether an open item is on a local file system, one that needs no server and no other process. Never waits.
[[nodiscard]] bool isOnPromptFileSystem(int fd);

} // namespace vantry
