#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/SelectionSummary.h"

#include <functional>
#include <vector>

namespace vantry {

/// What is found, by area; an area without candidates has no section.
[[nodiscard]] std::vector<CleanupSectionContent> filesFoundSections(const CleanupScanReport& report,
                                                                    const SelectedPaths& selected);

/// Every avenue of the catalog, by area. `button` makes the button of an action.
[[nodiscard]] std::vector<CleanupSectionContent>
storageGuideSections(const CleanupScanReport& report,
                     const std::function<AvenueButtonContent(CleanupAvenue::Action)>& button);

/// What stands in place of the candidates when there are none.
[[nodiscard]] EmptyStateContent emptyState(bool scanInFlight);

} // namespace vantry
