#pragma once

#include <expected>
#include <filesystem>

namespace vantry {

/// How a link at the end of a path is treated.
enum class FinalLink { isKept, isFollowed };

/// The path of the item that an absolute `path` leads to, without links on the way, found on file systems that answer
/// by themselves. Those of a server or of another process are recognised in the table of mounts and not asked. The
/// error is an errno; EAGAIN means that somebody would have to be waited for. Any thread.
[[nodiscard]] std::expected<std::filesystem::path, int> promptPath(const std::filesystem::path& path, FinalLink link);

} // namespace vantry
