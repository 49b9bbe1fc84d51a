#pragma once

#include "cleanup/window/CleanupServices.h"

#include <span>
#include <string>
#include <vector>

namespace vantry {

// Blocking; any thread but the main one.

/// Why candidates may not be moved, a line for each that may not.
[[nodiscard]] std::vector<std::string> validationFailureLines(const CleanupServices& services,
                                                              std::span<const CleanupCandidate> candidates);

/// What became of a move.
struct MoveOutcome {
    std::vector<CleanupCandidate> moved;   ///< in the order of the move
    std::vector<std::string> failureLines; ///< one for each candidate that was not moved
    bool recordWritten = false;
};

/// Moves the candidates to the Trash one after the other, going on after a failure, and writes the record of those that
/// were moved, if any.
[[nodiscard]] MoveOutcome moveToTrash(const CleanupServices& services, std::span<const CleanupCandidate> candidates);

} // namespace vantry
