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
        misplaced, ///< an item was taken from its name and could neither be put back nor kept in the Trash with its
                   ///< origin
    };

    Outcome outcome = Outcome::notMoved;
    std::string reason;         ///< unless moved: a lower-case phrase that follows the file's name
    std::filesystem::path path; ///< where a misplaced item lies

    bool operator==(const TrashMove&) const = default;
};

/// Moves the pinned file to the user's Trash under its name or one like it, so that it can be put back from there, and
/// returns when that is on the disk. Never deletes, copies or replaces a file: a name that leads to another file by
/// then is left or put back, and the move fails; so does a file whose size or modification date is no longer as
/// `checked` says. A file that exists is at every moment in its place, or in the Trash
/// with its origin, also if the process is killed. Blocking; any thread.
/// Linux: the home Trash of the freedesktop.org Trash specification 1.0, made where it is missing; regular files only,
/// and none on another file system.
[[nodiscard]] TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked);

} // namespace vantry
