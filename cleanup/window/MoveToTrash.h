#pragma once

#include "cleanup/window/CleanupServices.h"
#include "cleanup/window/MoveControl.h"

#include <span>
#include <string>
#include <vector>

namespace vantry {

// Blocking; any thread but the main one.

/// Why candidates may not be moved, a line for each that may not.
[[nodiscard]] std::vector<std::string> validationFailureLines(const CleanupServices& services,
                                                              std::span<const CleanupCandidate> candidates);

/// An item that is neither in its place nor in the Trash with its origin.
struct MisplacedItem {
    CleanupCandidate candidate;
    TrashMove move; ///< why, and where it lies

    bool operator==(const MisplacedItem&) const = default;
};

/// What became of a move. A candidate is in at most one of the lists, and in none if the move was stopped before it.
struct MoveOutcome {
    std::vector<CleanupCandidate> moved;   ///< in the order of the move
    std::vector<std::string> failureLines; ///< one for each candidate that is in its place
    std::vector<MisplacedItem> misplaced;
    bool recordWritten = false; ///< the last version of the record
};

/// Moves the candidates to the Trash one after the other until `control` stops it, and goes on after a failure. After
/// each moved file the record of the move is written again, so that it is true however the process ends.
[[nodiscard]] MoveOutcome moveToTrash(const CleanupServices& services, std::span<const CleanupCandidate> candidates,
                                      MoveControl& control);

} // namespace vantry
