#include "cleanup/model/CleanupScanState.h"

namespace vantry {

std::string_view title(CleanupScanState state) {
    switch (state) {
    case CleanupScanState::checked: return "Checked";
    case CleanupScanState::limited: return "Scan Incomplete";
    case CleanupScanState::notPresent: return "Not on This Mac";
    case CleanupScanState::relocated: return "Stored Somewhere Else";
    case CleanupScanState::permissionNeeded: return "Folder Access Needed";
    case CleanupScanState::unavailable: return "Couldn’t Check";
    }
    return {};
}

} // namespace vantry
