#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupScanReport.h"
#include "platform/HostSystem.h"
#include "storage/StorageSnapshot.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>

namespace vantry {

/// The number of candidates and their total size in bytes, which stops at the largest value instead of overflowing.
struct CandidateTotal {
    std::size_t count = 0;
    std::int64_t bytes = 0;

    void add(const CleanupCandidate& candidate);
    bool operator==(const CandidateTotal&) const = default;
};

[[nodiscard]] CandidateTotal totalOf(std::span<const CleanupCandidate> candidates);

/// The paths of the selected candidates.
using SelectedPaths = std::set<std::string>;

/// The total of the selected candidates that may be moved to the Trash.
[[nodiscard]] CandidateTotal selectedTotal(std::span<const CleanupCandidate> candidates, const SelectedPaths& selected);

/// Says what is selected, in one line.
[[nodiscard]] std::string selectionText(const CandidateTotal& selected);

/// The changing texts of a summary card.
struct SummaryCardTexts {
    std::string value;
    std::string detail;

    bool operator==(const SummaryCardTexts&) const = default;
};

[[nodiscard]] SummaryCardTexts macStorageTexts(const std::optional<StorageSnapshot>& snapshot, HostSystem system);
[[nodiscard]] SummaryCardTexts filesFoundTexts(std::span<const CleanupCandidate> candidates);

/// The result of a scan in one line. Begins with "Scan complete" if nothing was left out.
[[nodiscard]] std::string scanSummaryText(const CleanupScanReport& report, HostSystem system);

} // namespace vantry
