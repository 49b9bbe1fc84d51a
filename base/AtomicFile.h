#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace vantry {

/// Replaces the file at `file` with `contents` and the permissions `mode`, or creates it. After a crash or a
/// power cut at any moment the old file or the new one is there, never a torn one. The contents are first written to
/// `draftOf(file)`; an old draft is deleted. A link is replaced, not followed. The folder must exist;
/// one writer per file at a time. Blocking, it waits for the disk; any thread.
[[nodiscard]] Result<void> writeFileAtomically(const std::filesystem::path& file, std::string_view contents,
                                               mode_t mode);

/// Where a new version of `file` is written before it takes the file's place: ".NAME.new" in the same folder.
[[nodiscard]] std::filesystem::path draftOf(const std::filesystem::path& file);

/// The bytes of a regular file, links followed. Fails for anything else and for a file over `limit` bytes.
/// Blocking; any thread.
[[nodiscard]] Result<std::string> readSmallFile(const std::filesystem::path& file, std::size_t limit);

/// What is left to read from `fd`, the file at `file`, which only errors name. Fails if it is over `limit` bytes.
/// Blocking; any thread.
[[nodiscard]] Result<std::string> readToEnd(int fd, std::size_t limit, const std::filesystem::path& file);

} // namespace vantry
