#pragma once

#include <expected>
#include <filesystem>

namespace vantry {

/// How a link at the end of a path is treated.
enum class FinalLink { isKept, isFollowed };

/// The path of the item that an absolute `path` leads to, with the links on the way resolved. File systems of a server
/// or of another process are recognized by the mount table and not asked. The error is an errno; EAGAIN means that the
/// lookup would have to wait. Any thread.
[[nodiscard]] std::expected<std::filesystem::path, int> promptPath(const std::filesystem::path& path, FinalLink link);

} // namespace vantry
