#pragma once

#include "cleanup/model/CleanupScanReport.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vantry {

/// A candidate that does not exist on any disk.
[[nodiscard]] inline CleanupCandidate candidateAt(const std::filesystem::path& path, CleanupCategory category,
                                                  std::int64_t size = 1000) {
    const bool lowRisk = removalDisposition(category) == CleanupRemovalDisposition::directTrash;
    return CleanupCandidate::withFingerprint(path, path.filename().native(), category, "Not modified for a while", size,
                                             lowRisk ? CleanupConfidence::suggested : CleanupConfidence::review, {},
                                             SystemTime(std::chrono::seconds(1'700'000'000)));
}

[[nodiscard]] inline CleanupCandidate logAt(const std::filesystem::path& path, std::int64_t size = 1000) {
    return candidateAt(path, CleanupCategory::log, size);
}

/// A scan that checked everything and measured nothing anywhere.
[[nodiscard]] inline CleanupScanReport reportOf(std::vector<CleanupCandidate> candidates) {
    CleanupScanReport report{
        .candidates = std::move(candidates),
        .storageSnapshot = StorageSnapshot{
            .volumeName = "Data", .totalBytes = 500'000'000'000, .availableBytes = 200'000'000'000, .updatedAt = {}}};
    for (const auto& row : allCleanupCategories) {
        report.states[row.value] = CleanupScanState::checked;
        report.metrics[row.value].occupied = CleanupByteAmount::exact(0);
    }
    return report;
}

} // namespace vantry
