#pragma once

#include <filesystem>

namespace vantry {

/// Exchanges two files atomically. Returns an errno, 0 on success, `ENOENT` when one is missing, and `EINVAL` or
/// `ENOTSUP` on file systems that cannot do it. Links are not followed. Does not sync. Any thread.
[[nodiscard]] int exchangeFiles(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace vantry
