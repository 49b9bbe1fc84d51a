#pragma once

#include "platform/PinnedFile.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace vantry {

/// What became of a file that was to be moved to the Trash.
struct TrashMove {
    enum class Outcome {
        moved,     ///< it is in the Trash with its origin
        notMoved,  ///< it was left where it was, or put back there
        misplaced, ///< an item was moved and is neither back in its place nor in the Trash with its origin
    };

    Outcome outcome = Outcome::notMoved;
    std::string reason;         ///< unless moved: a lower-case phrase that follows the file's name
    std::filesystem::path path; ///< where a misplaced item lies; empty when another program deleted it

    [[nodiscard]] static TrashMove notMoved(std::string reason) { return {Outcome::notMoved, std::move(reason), {}}; }
    bool operator==(const TrashMove&) const = default;
};

/// Why a pinned file may not be moved from this place, as the phrase above.
[[nodiscard]] inline std::optional<std::string> refusalByPlace(PinnedPlace place) {
    switch (place) {
    case PinnedPlace::unchanged: return std::nullopt;
    case PinnedPlace::folderMoved: return "its folder is not to be found in its place";
    case PinnedPlace::missing: return "it is not to be found in its place";
    case PinnedPlace::link:
    case PinnedPlace::otherItem: break;
    }
    return "something else is in its place";
}

/// Moves the pinned file to the user's Trash, under its name or a similar one, so that it can be restored from there.
/// Returns when that is on the disk. Never deletes, copies or replaces a file: if the name leads to another file by
/// then, or the file's size or modification date differs from `checked`, the item is left or put back and the move
/// fails. A changed file that cannot be put back stays in the Trash, which counts as moved. At every moment, even if
/// the process is killed, the file is in its place, or in the Trash with its origin. Changes that other programs make
/// to the Trash after the last check are not covered. Blocking; any thread.
///
/// Linux: the home Trash of the freedesktop.org Trash specification 1.0, created if missing; only regular files on its
/// file system. macOS: the system's own move to the Trash, which does not report when it is on the disk and does not
/// always record the origin for "Put Back".
[[nodiscard]] TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked);

} // namespace vantry
