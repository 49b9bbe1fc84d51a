#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "storage/StorageSnapshot.h"

#include <optional>
#include <span>
#include <string>

namespace vantry {

/// What changes on a summary card.
struct SummaryCardTexts {
    std::string value;
    std::string detail;

    bool operator==(const SummaryCardTexts&) const = default;
};

[[nodiscard]] SummaryCardTexts macStorageTexts(const std::optional<StorageSnapshot>& snapshot);
[[nodiscard]] SummaryCardTexts filesFoundTexts(std::span<const CleanupCandidate> candidates);

} // namespace vantry
