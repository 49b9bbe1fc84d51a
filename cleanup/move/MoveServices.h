#pragma once

#include "base/Result.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/move/CleanupHistory.h"
#include "platform/Trash.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace vantry {

/// What a move does to the disk. The functions block and run in the background.
struct MoveServices {
    /// Why the candidate may not be moved, a lower-case phrase; absent when it may.
    std::function<std::optional<std::string>(const CleanupCandidate&)> validationFailure;
    /// Calls the function with the path to act on, unless other processes cannot be brought to leave the file alone.
    std::function<Result<void>(const std::filesystem::path&, const std::function<void(const std::filesystem::path&)>&)>
        coordinateMoving;
    /// Validates the candidate once more and moves what was validated to the Trash; a refusal is `notMoved`.
    std::function<TrashMove(const CleanupCandidate&)> moveValidated;
    /// Writes the record of a move, in place of its earlier version; false when it could not be written.
    std::function<bool(std::span<const CleanupCandidate>, const CleanupRecord&, RecordVersion)> saveHistory;
    std::function<SystemTime()> now;
};

/// The real ones. Without a home folder nothing moves. Any thread.
[[nodiscard]] MoveServices systemMoveServices();

} // namespace vantry
