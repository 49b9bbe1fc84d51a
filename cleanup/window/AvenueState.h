#pragma once

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupScanState.h"

#include <map>

namespace vantry {

/// What a scan says about an avenue as a whole.
enum class AvenueState {
    notScanned,       ///< no scan looks at it
    unknown,          ///< no scan has ended yet
    permissionNeeded, ///< one of its categories may not be read
    unavailable,      ///< one of its categories could not be checked
    relocated,        ///< one of its categories lies somewhere else
    notPresent,       ///< none of its categories is on this system
    checked,
};

/// Decided by the first that applies, from permission to presence.
[[nodiscard]] AvenueState avenueState(const CleanupAvenue& avenue,
                                      const std::map<CleanupCategory, CleanupScanState>& states);

/// Whether one of the avenue's categories is in the state `state`.
[[nodiscard]] bool hasState(const CleanupAvenue& avenue, const std::map<CleanupCategory, CleanupScanState>& states,
                            CleanupScanState state);

} // namespace vantry
