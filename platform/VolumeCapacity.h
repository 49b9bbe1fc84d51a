#pragma once

#include "base/Result.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vantry {

/// What the system says about a volume. A field is absent when the system does not provide it. Amounts are bytes; they
/// are not checked and may be negative or larger than the total.
struct VolumeCapacity {
    std::optional<std::string> name;
    std::optional<std::int64_t> totalBytes;
    std::optional<std::int64_t> availableBytes;
    /// Counts space that the system can free by itself. macOS only.
    std::optional<std::int64_t> availableForImportantUsageBytes;
    /// Reserved for the administrator, and not part of `totalBytes`. Linux only.
    std::optional<std::int64_t> reservedBytes;

    bool operator==(const VolumeCapacity&) const = default;
};

/// The volume that holds `path`: on macOS four resource values in one request; on Linux the used blocks of `statvfs`
/// and those that are available to users, as df(1) counts them, and the file system's label, or the name that file
/// managers give a volume without one. Products too large for 64 bits are held at the largest value. Blocking; any
/// thread. Fails only when the volume cannot be asked at all.
[[nodiscard]] Result<VolumeCapacity> readVolumeCapacity(const std::filesystem::path& path);

/// The same volume by the attributes of its file system (macOS: the file manager's, Linux: `statvfs`), without a figure
/// for important usage. The name alone may be absent. Blocking; any thread.
[[nodiscard]] Result<VolumeCapacity> readFileSystemAttributes(const std::filesystem::path& path);

} // namespace vantry
