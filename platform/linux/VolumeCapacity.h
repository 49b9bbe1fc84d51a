#pragma once

#include "platform/VolumeCapacity.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/statvfs.h>

namespace vantry {

/// The answer of `statvfs` in bytes: the total counts what ordinary users have filled or can fill, `reservedBytes` what
/// is kept for root.
[[nodiscard]] VolumeCapacity capacityFromStatvfs(const struct statvfs& said);

/// Decodes a name from /dev/disk/by-label, where udev writes unusual bytes as "\xHH".
[[nodiscard]] std::string decodedUdevName(std::string_view name);

} // namespace vantry
