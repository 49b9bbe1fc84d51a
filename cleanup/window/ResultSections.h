#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/SummaryTexts.h"
#include "platform/HostSystem.h"

#include <functional>
#include <vector>

namespace vantry {

/// The findings by area; areas without candidates are left out.
[[nodiscard]] std::vector<CleanupSectionContent> filesFoundSections(const CleanupScanReport& report,
                                                                    const SelectedPaths& selected, HostSystem system);

/// Every avenue of the catalog by area. On Linux, avenues without a place come last in their area. `button` makes the
/// button of an action.
[[nodiscard]] std::vector<CleanupSectionContent>
storageGuideSections(const CleanupScanReport& report, HostSystem system,
                     const std::function<AvenueButtonContent(CleanupAvenue::Action)>& button);

/// Replaces the candidates if there are none.
[[nodiscard]] EmptyStateContent emptyState(bool scanInFlight, HostSystem system);

} // namespace vantry
