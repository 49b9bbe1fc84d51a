#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "platform/HostSystem.h"

#include <string>
#include <string_view>

namespace vantry {

/// The identifier of the controls in a candidate's row.
[[nodiscard]] std::string controlIdentifier(const CleanupCandidate& candidate);
/// Whether `identifier` belongs to the candidate.
[[nodiscard]] bool isControlOf(const CleanupCandidate& candidate, std::string_view identifier);

/// The row of a candidate; only one that may be moved to the Trash can be `selected`.
[[nodiscard]] CandidateRowContent candidateRow(const CleanupCandidate& candidate, bool selected, HostSystem system,
                                               bool sizeIsLowerBound = false);

} // namespace vantry
