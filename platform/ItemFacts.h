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
    /// Clamped to the range of `SystemTime`. On macOS that of a `FoundItem` has the precision of a fingerprint's.
    std::optional<SystemTime> contentModificationDate;
    /// Of a regular file, including all forks if the system reports them. Sparse files count what they occupy.
    std::optional<std::int64_t> allocatedBytes;

    bool operator==(const ItemFacts&) const = default;
};

/// What can be done with a folder; `none` if there is no folder, `unknown` if that cannot be determined.
enum class FolderAccess { none, readable, unreadable, unknown };

// None of these waits for a server or for another process: an item on a network or FUSE file system gives an error of
// kind `timedOut`, or unknown. On Linux what the kernel has cached of one is reported. Any thread.

/// The item at `path` itself; a link is not followed. An error of kind `notFound` if there is none.
[[nodiscard]] Result<ItemFacts> readItemFacts(const std::filesystem::path& path);

/// The folder that `path` leads to; links are followed. On Linux folders on network and FUSE file systems are judged by
/// owner, group and permission bits alone.
[[nodiscard]] FolderAccess folderAccess(const std::filesystem::path& path);

/// Opens a folder for reading; the system may ask the user first. Blocks until the user has answered; any
/// thread. A refusal is `unreadable`.
using FolderOpener = std::function<FolderAccess(const std::filesystem::path&)>;

/// macOS asks about some folders, such as Downloads, once for each application. Empty on Linux, which never asks.
[[nodiscard]] FolderOpener folderOpener();

/// The name of the item that users see, as UTF-8. Linux: the last component, with U+FFFD for bytes that are not UTF-8;
/// macOS: what the Finder shows.
[[nodiscard]] std::string displayName(const std::filesystem::path& path);

/// `unknown` means that only a process that may hang should look.
enum class ItemKind { none, regularFile, folder, other, unknown };

/// What is at `path`; a link is `other`, an unreachable item is `none`. On Linux it comes from the kernel's cache or a
/// local file system, so that this never waits for a server. On macOS the file system is asked. Any thread.
[[nodiscard]] ItemKind quickItemKind(const std::filesystem::path& path);

} // namespace vantry
