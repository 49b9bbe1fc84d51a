#pragma once

#include "base/Result.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vantry {

/// What the system says about a volume, unjudged. An absent field is one that the system does not offer.
/// Amounts are bytes; they may be negative or larger than the total, as the system gives them.
struct VolumeCapacity {
    std::optional<std::string> name;
    std::optional<std::int64_t> totalBytes;
    std::optional<std::int64_t> availableBytes;
    /// Counts space that the system can free by itself. macOS only.
    std::optional<std::int64_t> availableForImportantUsageBytes;

    bool operator==(const VolumeCapacity&) const = default;
};

/// The volume that holds `path`: on macOS four resource values in one request; on Linux the blocks and the blocks
/// available to ordinary users of `statvfs`, and the file system's label. Products too large for 64 bits are held at
/// the largest value. Blocking; any thread. Fails only when the volume cannot be asked at all.
[[nodiscard]] Result<VolumeCapacity> readVolumeCapacity(const std::filesystem::path& path);

/// The same volume by the attributes of its file system (macOS: the file manager's, Linux: `statvfs`), without a figure
/// for important usage. The name is absent also when it alone cannot be read. Blocking; any thread.
[[nodiscard]] Result<VolumeCapacity> readFileSystemAttributes(const std::filesystem::path& path);

} // namespace vantry
