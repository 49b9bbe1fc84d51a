#pragma once

#include "platform/PinnedFile.h"

#include <filesystem>
#include <string>

namespace vantry {

/// What became of a file that was to be moved to the Trash.
struct TrashMove {
    enum class Outcome {
        moved,     ///< it is in the Trash, with its origin
        notMoved,  ///< it was left where it was, or put back there
        misplaced, ///< an item was taken from its name and is neither back there nor in the Trash with its origin
    };

    Outcome outcome = Outcome::notMoved;
    std::string reason;         ///< unless moved: a lower-case phrase that follows the file's name
    std::filesystem::path path; ///< where a misplaced item lies; empty when another program deleted it

    bool operator==(const TrashMove&) const = default;
};

/// Moves the pinned file to the user's Trash under its name or one like it, so that it can be put back from there, and
/// returns when that is on the disk. Never deletes, copies or replaces a file: a name that leads to another file by
/// then is left or put back, and the move fails; so does a file whose size or modification date is no longer as
/// `checked` says. A changed file that cannot be put back stays in the Trash, which counts as moved. A file that exists
/// is at every moment in its place, or in the Trash with its origin, also if the process is killed; what other programs
/// do to the Trash after the last look at it is theirs. Blocking; any thread.
/// Linux: the home Trash of the freedesktop.org Trash specification 1.0, made where it is missing; regular files only,
/// and none on another file system. macOS: the system's own move to the Trash, which says neither when the disk has it
/// nor always records the origin for "Put Back".
[[nodiscard]] TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked);

} // namespace vantry
