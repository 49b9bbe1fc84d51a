#include "cleanup/window/AvenueState.h"

#include <algorithm>

namespace vantry {

bool hasState(const CleanupAvenue& avenue, const std::map<CleanupCategory, CleanupScanState>& states,
              CleanupScanState state) {
    return std::ranges::any_of(avenue.categories, [&](CleanupCategory category) {
        const auto known = states.find(category);
        return known != states.end() && known->second == state;
    });
}

AvenueState avenueState(const CleanupAvenue& avenue, const std::map<CleanupCategory, CleanupScanState>& states) {
    const auto has = [&](CleanupScanState state) { return hasState(avenue, states, state); };
    if (avenue.mode != CleanupAvenue::Mode::scanned || avenue.categories.empty())
        return AvenueState::notScanned;
    if (has(CleanupScanState::permissionNeeded))
        return AvenueState::permissionNeeded;
    if (has(CleanupScanState::unavailable))
        return AvenueState::unavailable;
    if (has(CleanupScanState::relocated))
        return AvenueState::relocated;
    if (has(CleanupScanState::checked) || has(CleanupScanState::limited))
        return AvenueState::checked;
    return has(CleanupScanState::notPresent) ? AvenueState::notPresent : AvenueState::unknown;
}

} // namespace vantry
