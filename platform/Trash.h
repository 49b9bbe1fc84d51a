#pragma once

#include "base/Result.h"
#include "platform/PinnedFile.h"

namespace vantry {

/// Moves the pinned file to the user's Trash under its name or one like it, so that it can be put back from there, and
/// returns when that is on the disk. Never deletes, copies or replaces a file: a name that leads to another file by
/// then is left or put back, and the move fails. On Linux the home Trash of the freedesktop.org Trash
/// specification 1.0; a file on another file system is refused. Blocking; any thread.
[[nodiscard]] Result<void> moveToTrash(const PinnedFile& file);

} // namespace vantry
