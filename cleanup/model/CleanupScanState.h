#pragma once

#include <string_view>

namespace vantry {

/// How the check of one category ended.
enum class CleanupScanState {
    checked,          ///< one of the category's places was listed completely
    limited,          ///< checked, but its finder stopped early
    notPresent,       ///< none of its places is a folder
    relocated,        ///< the place is a link; what it leads to was not followed
    permissionNeeded, ///< a place may not be read
    unavailable,      ///< a place could not be listed completely in time
};

/// The status text that is shown.
[[nodiscard]] std::string_view title(CleanupScanState state);

} // namespace vantry
