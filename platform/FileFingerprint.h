#pragma once

#include "base/Time.h"

#include <optional>
#include <string>

namespace vantry {

/// What identifies a file at a moment. An absent field is one that the system does not tell. The texts are for
/// comparison with other readings on the same running system, and for nothing else.
struct FileFingerprint {
    /// Linux: to the nanosecond; macOS: as finely as its dates count, some tenth of a microsecond.
    std::optional<SystemTime> contentModificationDate;
    /// The same for a file whatever its name, another for a file that takes its place. Linux: the file handle with the
    /// inode number and the birth time; inode number and birth time alone where the file system has no handles or they
    /// may not be asked for; absent where there is neither handle nor birth time, since inode numbers are used again.
    std::optional<std::string> resourceIdentifier;
    /// The same for everything on one volume while it is mounted. Linux: the mount, since nothing moves from one to
    /// another; the device where the kernel does not tell the mount.
    std::optional<std::string> volumeIdentifier;

    bool operator==(const FileFingerprint&) const = default;
};

/// What identifies the item that `fd` stands for, also one opened for its path alone; equal to what its path gives, see
/// platform/FoundItem.h. `fd` stays the caller's. On Linux also for an item that has no name left, on macOS every field
/// is then absent. On Linux waits for no server where cached attributes serve. Blocking; any thread. Never fails: where
/// nothing can be read every field is absent.
[[nodiscard]] FileFingerprint readFileFingerprint(int fd);

} // namespace vantry
