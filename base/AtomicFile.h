#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace vantry {

/// Whether a written file has to survive a power cut (`synced`, which waits for the disk) or only the end of the
/// process.
enum class Durability { synced, unsynced };

/// Replaces the file at `file` with `contents` and the permissions `mode`, or creates it. If the process ends at any
/// moment, the old file or the new one is there, never a torn one; with `synced` that holds for a power cut too. The
/// contents are first written to `draftOf(file)`; a draft that a crash left is replaced by the next call for the same
/// file. A link is replaced, not followed. The folder must exist; one writer per file at a time. Blocking; any thread.
[[nodiscard]] Result<void> writeFileAtomically(const std::filesystem::path& file, std::string_view contents,
                                               mode_t mode, Durability durability = Durability::synced);

/// Where a new version of `file` is written before it takes the file's place: ".NAME.new" in the same folder.
[[nodiscard]] std::filesystem::path draftOf(const std::filesystem::path& file);

/// The bytes of a regular file, links followed. Fails for anything else and for a file over `limit` bytes.
/// Blocking; any thread.
[[nodiscard]] Result<std::string> readSmallFile(const std::filesystem::path& file, std::size_t limit);

} // namespace vantry
