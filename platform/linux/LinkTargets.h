#pragma once

#include "base/Result.h"

#include <filesystem>

namespace vantry {

// Like platform/ItemFacts.h, neither waits for a server or for another process. Any thread.

/// Whether this process may read the file that `path` leads to; false if that cannot be determined.
[[nodiscard]] bool isReadableFile(const std::filesystem::path& path);

/// `path` with all links resolved; an error if it leads nowhere or cannot be resolved.
[[nodiscard]] Result<std::filesystem::path> resolvedPath(const std::filesystem::path& path);

} // namespace vantry
