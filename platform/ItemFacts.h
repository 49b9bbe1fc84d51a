#pragma once

#include "base/Result.h"
#include "base/Time.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vantry {

/// What the file system says about an item, read in one request.
struct ItemFacts {
    enum class Kind { regularFile, folder, symbolicLink, other };

    Kind kind = Kind::other;
    /// Held at the ends of what `SystemTime` can tell.
    std::optional<SystemTime> contentModificationDate;
    /// Of a regular file, with all of its forks where the system tells them. Sparse files count what they occupy.
    std::optional<std::int64_t> allocatedBytes;

    bool operator==(const ItemFacts&) const = default;
};

/// What can be done with a folder; `none` where no folder stands, `unknown` where that cannot be found out.
enum class FolderAccess { none, readable, unreadable, unknown };

// On Linux none of these waits for a server or for another process: what the kernel does not know of a file system that
// does not answer by itself is an error of kind `timedOut`, or unknown. On macOS the file system is asked. Any thread.

/// The item at `path` itself, a link not followed. An error of kind `notFound` where there is none.
[[nodiscard]] Result<ItemFacts> readItemFacts(const std::filesystem::path& path);

/// The folder that `path` leads to, links followed. On Linux file systems that are asked through others are judged by
/// owner, group and permission bits alone.
[[nodiscard]] FolderAccess folderAccess(const std::filesystem::path& path);

/// The name of the item that users see, as UTF-8. Linux: the last component, with U+FFFD for bytes that are no UTF-8;
/// macOS: what the Finder shows.
[[nodiscard]] std::string displayName(const std::filesystem::path& path);

} // namespace vantry
