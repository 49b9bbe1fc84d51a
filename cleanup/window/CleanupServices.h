#pragma once

#include "base/Result.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupHistory.h"
#include "platform/ItemFacts.h"
#include "platform/Trash.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace vantry {

/// What the "Free Up Space" window does to the disk. The functions block and run in the background.
struct CleanupServices {
    std::filesystem::path home;         ///< whose folders the avenues open
    std::filesystem::path applications; ///< the folder of applications that the avenues open

    std::function<CleanupScanReport(std::span<const std::string> runningBundleIdentifiers)> scan;
    /// Ends a scan that runs, and keeps one from starting: its worker processes end and their files are removed. Any
    /// thread; takes half a second at most.
    std::function<void()> stopScanning;
    /// Why the candidate may not be moved, a lower-case phrase; absent when it may.
    std::function<std::optional<std::string>(const CleanupCandidate&)> validationFailure;
    /// Calls the function with the path to act on, unless other processes cannot be brought to leave the file alone.
    std::function<Result<void>(const std::filesystem::path&, const std::function<void(const std::filesystem::path&)>&)>
        coordinateMoving;
    /// Validates the candidate once more and moves what was validated to the Trash; what may not be moved is
    /// `notMoved`.
    std::function<TrashMove(const CleanupCandidate&)> moveToTrash;
    /// Writes the record of a move, in place of its earlier version; false when it could not be written.
    std::function<bool(std::span<const CleanupCandidate>, const CleanupRecord&, RecordVersion)> saveHistory;
    std::function<SystemTime()> now;
    /// How long the end of the process waits for the file in hand of a move.
    std::chrono::milliseconds longestEnding{2000};
};

/// The real ones, whose first scan has the system ask the user about folders by `opener`. Blocking, once.
[[nodiscard]] CleanupServices systemCleanupServices(FolderOpener opener = folderOpener());

} // namespace vantry
