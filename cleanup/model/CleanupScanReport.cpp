#include "cleanup/model/CleanupScanReport.h"

#include "base/HashOf.h"

namespace vantry {

std::string_view identifier(CleanupScanState state) {
    switch (state) {
    case CleanupScanState::checked: return "checked";
    case CleanupScanState::limited: return "limited";
    case CleanupScanState::notPresent: return "notPresent";
    case CleanupScanState::relocated: return "relocated";
    case CleanupScanState::permissionNeeded: return "permissionNeeded";
    case CleanupScanState::unavailable: return "unavailable";
    }
    return {};
}

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

using vantry::hashOf;

std::size_t std::hash<vantry::CleanupByteAmount>::operator()(const vantry::CleanupByteAmount& amount) const {
    return hashOf(amount.knownBytes(), amount.isExact());
}

std::size_t std::hash<vantry::CleanupCategoryMetric>::operator()(const vantry::CleanupCategoryMetric& metric) const {
    return hashOf(metric.occupied, metric.reviewableBytes, metric.reviewableItemCount);
}

std::size_t std::hash<vantry::CleanupScanReport>::operator()(const vantry::CleanupScanReport& report) const {
    std::size_t all = hashOf(report.duration.count(), report.storageSnapshot.has_value());
    for (const auto& candidate : report.candidates)
        all = hashOf(all, candidate);
    for (const auto& [category, state] : report.states)
        all = hashOf(all, category, state);
    for (const auto& [category, metric] : report.metrics)
        all = hashOf(all, category, metric);
    for (const auto& path : report.incompletePaths)
        all = hashOf(all, path);
    for (const auto& [identifier, usage] : report.guide)
        all = hashOf(all, identifier, usage.state, usage.occupied, usage.paths.size());
    if (const auto& snapshot = report.storageSnapshot)
        all = hashOf(all, snapshot->volumeName, snapshot->totalBytes, snapshot->availableBytes,
                     snapshot->updatedAt.time_since_epoch().count());
    return all;
}
