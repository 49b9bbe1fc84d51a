#pragma once

#include "cleanup/model/CleanupCandidate.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <span>
#include <string>

namespace vantry {

/// How many candidates and how large they are together, in bytes; a sum that would overflow stays at the largest value.
struct CandidateTotal {
    std::size_t count = 0;
    std::int64_t bytes = 0;

    void add(const CleanupCandidate& candidate);
    bool operator==(const CandidateTotal&) const = default;
};

[[nodiscard]] CandidateTotal totalOf(std::span<const CleanupCandidate> candidates);

/// What the user chose, as paths.
using SelectedPaths = std::set<std::string>;

/// Of the selected candidates that may be moved to the Trash.
[[nodiscard]] CandidateTotal selectedTotal(std::span<const CleanupCandidate> candidates, const SelectedPaths& selected);

/// The line that says what is selected.
[[nodiscard]] std::string selectionText(const CandidateTotal& selected);

} // namespace vantry
