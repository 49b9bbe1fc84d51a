#pragma once

#include "base/Time.h"

#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>

namespace vantry {

/// What `lstat` says, of an item that has to be there.
[[nodiscard]] inline struct stat factsOf(const std::filesystem::path& item) {
    struct stat facts = {};
    if (lstat(item.c_str(), &facts) != 0)
        throw std::runtime_error("cannot look at " + item.native());
    return facts;
}

[[nodiscard]] inline std::int64_t allocatedBytes(const std::filesystem::path& item) {
    return std::int64_t{factsOf(item).st_blocks} * 512;
}

[[nodiscard]] inline mode_t permissionsOf(const std::filesystem::path& item) { return factsOf(item).st_mode & 07777; }

/// Dates an item, a link itself.
inline void setModified(const std::filesystem::path& item, SystemTime time) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const timespec moment{static_cast<time_t>(seconds.time_since_epoch().count()),
                          static_cast<long>((time - seconds).count())};
    const timespec times[] = {{0, UTIME_OMIT}, moment};
    if (utimensat(AT_FDCWD, item.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        throw std::runtime_error("cannot date " + item.native());
}

} // namespace vantry
