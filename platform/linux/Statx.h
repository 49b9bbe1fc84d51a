#pragma once

#include <cstdint>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace vantry {

/// Flags to look at an item by its path: uses cached attributes, mounts nothing, follows no link.
constexpr int statxByPath = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;

/// The bytes that an item takes on its volume; absent if the file system does not say. For the unit see statx(2).
inline std::optional<std::int64_t> allocatedBytesOf(const struct statx& said) {
    std::int64_t bytes = 0;
    if ((said.stx_mask & STATX_BLOCKS) == 0 || __builtin_mul_overflow(said.stx_blocks, 512, &bytes))
        return std::nullopt;
    return bytes;
}

} // namespace vantry
