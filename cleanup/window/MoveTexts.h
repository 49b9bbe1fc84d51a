#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/move/MoveCandidates.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/SummaryTexts.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace vantry {

inline constexpr const char* checkingText = "Checking that the selected items have not changed…";
inline constexpr const char* movingText = "Moving selected items to the Trash…";

[[nodiscard]] AlertContent protectedSelectionAlert();
/// For a change before the confirmation. Shows the first four failure lines.
[[nodiscard]] AlertContent changedSinceScanAlert(std::span<const std::string> failureLines);
/// For a change after the confirmation. Shows the first four failure lines.
[[nodiscard]] AlertContent changedBeforeMoveAlert(std::span<const std::string> failureLines);
/// The first button moves the selected files.
[[nodiscard]] AlertContent confirmationAlert(const CandidateTotal& selected);

/// Names the items that are neither in their place nor in the Trash with a record of their origin, and where they are.
[[nodiscard]] AlertContent misplacedAlert(std::span<const MisplacedItem> items);

/// The result of a move.
[[nodiscard]] std::string movedText(std::size_t movedCount, std::size_t failureCount, bool recordWritten);

} // namespace vantry
