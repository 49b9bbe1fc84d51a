#pragma once

#include "platform/VolumeCapacity.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/statvfs.h>

namespace vantry {

/// What `statvfs` said, in bytes: all blocks, and those that an ordinary user may still fill.
[[nodiscard]] VolumeCapacity capacityFromStatvfs(const struct statvfs& said);

/// A name from /dev/disk/by-label, where udev writes every byte that is unusual in a file name as "\xHH".
[[nodiscard]] std::string decodedUdevName(std::string_view name);

} // namespace vantry
