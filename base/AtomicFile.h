#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace vantry {

/// Replaces what stands at `file` by `contents` with the permissions `mode`, or makes it. A crash at any moment leaves
/// the old file or the new one, never a torn one; what it may leave beside it is gone after the next successful call. A
/// link is replaced, not followed. The folder must exist; one writer at a time. Blocking (it waits for the disk); any
/// thread.
[[nodiscard]] Result<void> writeFileAtomically(const std::filesystem::path& file, std::string_view contents,
                                               mode_t mode);

/// The same with a name of the caller's choice for what is written first, in the same folder: for files whose names
/// differ each time.
[[nodiscard]] Result<void> writeFileAtomically(const std::filesystem::path& file, std::string_view contents,
                                               mode_t mode, std::string_view draftName);

/// The bytes of a regular file, links followed. Fails for anything else and for a file over `limit` bytes.
/// Blocking; any thread.
[[nodiscard]] Result<std::string> readSmallFile(const std::filesystem::path& file, std::size_t limit);

} // namespace vantry
