#pragma once

#include <cstdint>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

// What each system does in its own way.

/// Gives the open, empty file `bytes` of the disk, and that size.
[[nodiscard]] bool allocate(int fd, std::int64_t bytes);

/// Lets the two names, relative to open folders, change places in one step.
[[nodiscard]] bool exchange(int oneFolder, const char* one, int otherFolder, const char* other);

/// The most memory that this process has had, in KiB.
[[nodiscard]] long peakMemory();

/// In nanoseconds since 1970.
[[nodiscard]] std::int64_t modificationTime(const struct stat& facts);

/// A user ID that nobody on this system has.
[[nodiscard]] inline uid_t unknownUser() { return 1'700'000'000U + static_cast<uid_t>(getpid()); }

/// Whether a file's name may hold any bytes, also ones that are not valid UTF-8.
[[nodiscard]] bool namesMayBeAnyBytes();

/// Makes this process one of `user`, without any right beyond: for real as root, else in a user namespace of its own,
/// where there are such. For a child process, as there is no way back.
[[nodiscard]] bool becomeUser(uid_t user);

} // namespace vantry
