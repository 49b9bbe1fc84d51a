#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/SummaryTexts.h"
#include "platform/HostSystem.h"

#include <map>
#include <optional>
#include <string>

namespace vantry {

/// What the "Free Up Space" window knows and does.
struct CleanupWindowState {
    /// `checking` is the validation before a sheet or a move, `asking` a sheet.
    enum class Activity { idle, scanning, checking, asking, moving };

    Activity activity = Activity::idle;
    CleanupWindowMode mode = CleanupWindowMode::filesFound;
    CleanupScanReport report; ///< of the last finished scan, less what was moved since; empty before
    SelectedPaths selected;
    std::optional<CandidateTotal> selectedTotal; ///< as last shown with the files; absent before the first scan
    std::string summary = CleanupWindowContent{}.statusLabel; ///< of the last finished scan or move
    std::optional<std::string> announcement = {};             ///< replaces the status text
    std::string copiedCommand = {};                           ///< by the last press of a button in this guide
    std::map<CleanupAvenue::Action, bool> canOpen = {};       ///< a missing action can be opened
};

/// The content of the window in this state, in the words of `system`. Touches no disk. Any thread.
[[nodiscard]] CleanupWindowContent cleanupWindowContent(const CleanupWindowState& state, HostSystem system);

} // namespace vantry
