#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupCategory.h"
#include "cleanup/model/CleanupCategoryMetric.h"
#include "cleanup/model/CleanupScanState.h"
#include "storage/StorageSnapshot.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vantry {

/// The result of one scan.
struct CleanupScanReport {
    std::vector<CleanupCandidate> candidates;                 ///< in the order in which they are shown
    std::map<CleanupCategory, CleanupScanState> states;       ///< one entry for every category
    std::map<CleanupCategory, CleanupCategoryMetric> metrics; ///< one entry for every category
    std::optional<StorageSnapshot> storageSnapshot;           ///< read at the end of the scan
    std::chrono::duration<double> duration{};                 ///< how long the scan took
    std::set<std::string>
        incompletePaths; ///< ids of the candidates whose size is a lower bound: measuring stopped early

    [[nodiscard]] bool sizeIsLowerBound(const CleanupCandidate& candidate) const {
        return incompletePaths.contains(candidate.id());
    }

    bool operator==(const CleanupScanReport&) const = default;
};

} // namespace vantry

template <>
struct std::hash<vantry::CleanupScanReport> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupScanReport& report) const;
};
