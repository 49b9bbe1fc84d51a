#pragma once

#include "base/Result.h"
#include "base/Time.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace vantry {

/// What the file system says about an item, read in one request.
struct ItemFacts {
    enum class Kind { regularFile, folder, symbolicLink, other };

    Kind kind = Kind::other;
    /// Held at the ends of what `SystemTime` can tell. On macOS that of a `FoundItem` is as fine as in a fingerprint.
    std::optional<SystemTime> contentModificationDate;
    /// Of a regular file, with all of its forks where the system tells them. Sparse files count what they occupy.
    std::optional<std::int64_t> allocatedBytes;

    bool operator==(const ItemFacts&) const = default;
};

/// What can be done with a folder; `none` where no folder stands, `unknown` where that cannot be found out.
enum class FolderAccess { none, readable, unreadable, unknown };

// None of these waits for a server or for another process: what is on a file system that does not answer by itself is
// an error of kind `timedOut`, or unknown. On Linux what the kernel has in its memory of one is told. Any thread.

/// The item at `path` itself, a link not followed. An error of kind `notFound` where there is none.
[[nodiscard]] Result<ItemFacts> readItemFacts(const std::filesystem::path& path);

/// The folder that `path` leads to, links followed. On Linux file systems that are asked through others are judged by
/// owner, group and permission bits alone.
[[nodiscard]] FolderAccess folderAccess(const std::filesystem::path& path);

/// Opens a folder for reading, for which the system may ask the user first. Blocks until the user has answered; any
/// thread. A refusal is `unreadable`.
using FolderOpener = std::function<FolderAccess(const std::filesystem::path&)>;

/// The system's: macOS asks about some folders, Downloads among them, once for each application. Empty on Linux, which
/// asks about none.
[[nodiscard]] FolderOpener folderOpener();

/// The name of the item that users see, as UTF-8. Linux: the last component, with U+FFFD for bytes that are no UTF-8;
/// macOS: what the Finder shows.
[[nodiscard]] std::string displayName(const std::filesystem::path& path);

} // namespace vantry
