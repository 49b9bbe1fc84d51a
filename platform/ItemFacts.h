#pragma once

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

// On Linux these answer from cached attributes where a server would have to be asked, and start no automounter.
// Blocking; any thread.

/// The item at `path` itself, a link not followed. Absent when there is none or it cannot be looked at.
[[nodiscard]] std::optional<ItemFacts> readItemFacts(const std::filesystem::path& path);

/// Whether `path` leads to a folder, links followed.
[[nodiscard]] bool isFolder(const std::filesystem::path& path);

/// Whether this process may read the folder that `path` leads to. On file systems without a disk of their own, which
/// might not answer, Linux decides by owner, group and permission bits alone.
[[nodiscard]] bool isReadableFolder(const std::filesystem::path& path);

/// The name of the item that users see, as UTF-8. Linux: the last component, with U+FFFD for bytes that are no UTF-8;
/// macOS: what the Finder shows.
[[nodiscard]] std::string displayName(const std::filesystem::path& path);

} // namespace vantry
