#pragma once

#include "base/Result.h"
#include "platform/PinnedFile.h"

namespace vantry {

/// Moves the pinned file to the user's Trash under its name or one like it, so that it can be put back from there, and
/// returns when that is on the disk. Never deletes, copies or replaces a file: a name that leads to another file by
/// then is left or put back, and the move fails. After a failure the file is in its place; only when it cannot be put
/// back either is it in the Trash, and the message says so. A file that exists is at every moment in its place, or in
/// the Trash with its origin, also if the process is killed. The message is a lower-case phrase that follows the file's
/// name. Blocking; any thread.
/// Linux: the home Trash of the freedesktop.org Trash specification 1.0, made where it is missing; regular files only,
/// and none on another file system, which is `unsupported`.
[[nodiscard]] Result<void> moveToTrash(const PinnedFile& file);

} // namespace vantry
