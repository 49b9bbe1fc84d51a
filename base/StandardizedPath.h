#pragma once

#include <filesystem>

namespace vantry {

/// `path` without ".", "..", doubled slashes and a slash at its end. Does not access the disk, so links stay as
/// they are. Any thread.
[[nodiscard]] std::filesystem::path standardizedPath(const std::filesystem::path& path);

} // namespace vantry
