#pragma once

#include "base/Time.h"

#include <optional>
#include <string>

namespace vantry {

/// What identifies a file at a moment. A field is absent when the system does not provide it. The texts are only for
/// comparison with others that were read since the system started.
struct FileFingerprint {
    /// Linux: to the nanosecond; macOS: to the precision of NSDate, about a tenth of a microsecond.
    std::optional<SystemTime> contentModificationDate;
    /// Stays the same when a file is renamed, and differs for a file that replaces it. Linux: the file handle, inode
    /// number and birth time; without the handle if it is not available; absent if there is no birth time either,
    /// since inode numbers are reused.
    std::optional<std::string> resourceIdentifier;
    /// The same for everything on one volume while it is mounted. Linux: the mount, since files cannot be renamed
    /// across mounts; the device if the kernel does not report the mount.
    std::optional<std::string> volumeIdentifier;

    bool operator==(const FileFingerprint&) const = default;
};

/// The fingerprint of the item that `fd` is open for (O_PATH will do); the same as by its path, see
/// platform/FoundItem.h. `fd` stays the caller's. For a deleted item it works on Linux, and every field is absent on
/// macOS. On Linux it uses cached attributes where a server would have to be asked. Blocking; any thread. Never fails:
/// if nothing can be read, every field is absent.
[[nodiscard]] FileFingerprint readFileFingerprint(int fd);

} // namespace vantry
