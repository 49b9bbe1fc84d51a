#pragma once

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupByteAmount.h"
#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupWindowContent.h"

#include <map>
#include <set>
#include <string>

namespace vantry {

/// What all places of the categories hold. Exact when every part is; at least the known parts otherwise; unavailable
/// when no part is known.
[[nodiscard]] CleanupByteAmount combinedOccupiedAmount(const std::set<CleanupCategory>& categories,
                                                       const std::map<CleanupCategory, CleanupCategoryMetric>& metrics);

/// How much space a scanned avenue uses, as far as that is known.
[[nodiscard]] std::string usageText(const CleanupAvenue& avenue, const CleanupScanReport& report);

/// The status of an avenue, and the line below it.
struct AvenueStatus {
    std::string primary;
    std::string secondary;
    SystemColor color;

    bool operator==(const AvenueStatus&) const = default;
};

[[nodiscard]] AvenueStatus avenueStatus(const CleanupAvenue& avenue, const CleanupScanReport& report);

/// The row of an avenue, without its button.
[[nodiscard]] AvenueRowContent avenueRow(const CleanupAvenue& avenue, const CleanupScanReport& report);

} // namespace vantry
