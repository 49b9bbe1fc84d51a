#pragma once

#include "base/Result.h"

#include <filesystem>

namespace vantry {

// Neither waits for a server or for another process, see platform/ItemFacts.h. Any thread.

/// Whether this process may read the file that `path` leads to; false also where that cannot be found out.
[[nodiscard]] bool isReadableFile(const std::filesystem::path& path);

/// Where `path` leads to, without links; an error where it leads nowhere or that cannot be found out.
[[nodiscard]] Result<std::filesystem::path> resolvedPath(const std::filesystem::path& path);

} // namespace vantry
