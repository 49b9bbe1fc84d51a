#pragma once

#include "cleanup/move/MoveControl.h"
#include "cleanup/move/MoveServices.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// The reason why a candidate is not moved, as a line.
[[nodiscard]] std::string failureLine(const CleanupCandidate& candidate, std::string_view reason);

// Blocking; any thread but the main one.

/// One line for each candidate that may not be moved.
[[nodiscard]] std::vector<std::string> validationFailureLines(const MoveServices& services,
                                                              std::span<const CleanupCandidate> candidates);

/// An item that is neither in its place nor in the Trash with a record of its origin.
struct MisplacedItem {
    CleanupCandidate candidate;
    TrashMove move; ///< the reason, and where the item is

    bool operator==(const MisplacedItem&) const = default;
};

/// Where the item is, or else why it is not in its place, as a line.
[[nodiscard]] std::string misplacedLine(const MisplacedItem& item);

/// The result of a move. A candidate is in at most one of the lists, and in none if the move was stopped before it.
struct MoveOutcome {
    std::vector<CleanupCandidate> moved;   ///< in the order of the move
    std::vector<std::string> failureLines; ///< one for each candidate that stayed in its place
    std::vector<MisplacedItem> misplaced;
    bool recordWritten = false; ///< its last version
};

/// Moves the candidates to the Trash one by one until `control` stops it; continues after a failure. Writes the record
/// again after each moved file, so that it is true however the process ends. A stopped move tells about misplaced items
/// on standard error, because the process ends before a window can.
[[nodiscard]] MoveOutcome moveCandidates(const MoveServices& services, std::span<const CleanupCandidate> candidates,
                                         MoveControl& control);

} // namespace vantry
