#pragma once

#include <cstdint>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

// What each system does in its own way.

/// Gives the open, empty file `bytes` of the disk, and that size.
[[nodiscard]] bool allocate(int fd, std::int64_t bytes);

/// In nanoseconds since 1970.
[[nodiscard]] std::int64_t modificationTime(const struct stat& facts);

/// A user number that nobody on this system has.
[[nodiscard]] inline uid_t unknownUser() { return 1'700'000'000U + static_cast<uid_t>(getpid()); }

/// Makes this process one of `user`, without any right beyond: for real as root, else in a user namespace of its own,
/// where there are such. For a child process, as there is no way back.
[[nodiscard]] bool becomeUser(uid_t user);

} // namespace vantry
