#pragma once

#include <filesystem>

namespace vantry {

/// `unknown` is what only a process that may hang should find out.
enum class ItemKind { none, regularFile, folder, other, unknown };

/// What stands at `path`; a link there is `other`, what cannot be reached is `none`. On Linux it is found out only
/// where that takes no longer than a disk of this machine does: from what the kernel has in memory, whatever the file
/// system is, or by asking a file system on such a disk. On macOS the file system is asked. Any thread.
[[nodiscard]] ItemKind quickItemKind(const std::filesystem::path& path);

} // namespace vantry
