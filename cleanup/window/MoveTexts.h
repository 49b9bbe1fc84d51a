#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/MoveToTrash.h"
#include "cleanup/window/SelectionSummary.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace vantry {

inline constexpr const char* checkingText = "Checking that the selected items have not changed…";
inline constexpr const char* movingText = "Moving selected items to the Trash…";

/// Why a candidate is not moved, as a line.
[[nodiscard]] std::string failureLine(const CleanupCandidate& candidate, std::string_view reason);

[[nodiscard]] AlertContent protectedSelectionAlert();
/// When nothing was confirmed yet. Of the failure lines the first four are shown.
[[nodiscard]] AlertContent changedSinceScanAlert(std::span<const std::string> failureLines);
/// After the confirmation. Of the failure lines the first four are shown.
[[nodiscard]] AlertContent changedBeforeMoveAlert(std::span<const std::string> failureLines);
/// The first button moves what is selected.
[[nodiscard]] AlertContent confirmationAlert(const CandidateTotal& selected);

/// Names the items that are neither in their place nor in the Trash with their origin, and says where they are.
[[nodiscard]] AlertContent misplacedAlert(std::span<const MisplacedItem> items);

/// What became of a move.
[[nodiscard]] std::string movedText(std::size_t movedCount, std::size_t failureCount, bool recordWritten);

} // namespace vantry
