#pragma once

#include <cstdint>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace vantry {

/// How an item is looked at by its path: what is known is enough, nothing is mounted, no link is followed.
constexpr int statxByPath = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;

/// What an item takes on its volume, in bytes; none where the file system does not say. Unit of stx_blocks: statx(2).
inline std::optional<std::int64_t> allocatedBytesOf(const struct statx& said) {
    std::int64_t bytes = 0;
    if ((said.stx_mask & STATX_BLOCKS) == 0 || __builtin_mul_overflow(said.stx_blocks, 512, &bytes))
        return std::nullopt;
    return bytes;
}

} // namespace vantry
