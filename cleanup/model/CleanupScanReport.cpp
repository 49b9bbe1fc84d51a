#include "cleanup/model/CleanupScanReport.h"

#include "cleanup/model/HashOf.h"

using vantry::hashOf;

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
    if (const auto& snapshot = report.storageSnapshot)
        all = hashOf(all, snapshot->volumeName, snapshot->totalBytes, snapshot->availableBytes,
                     snapshot->updatedAt.time_since_epoch().count());
    return all;
}
