#include "cleanup/window/MoveTexts.h"

#include "base/Text.h"
#include "platform/TextFormat.h"

#include <algorithm>

namespace vantry {

namespace {

constexpr std::size_t mostFailures = 4;

AlertContent changedAlert(const char* message, std::span<const std::string> failureLines, const char* outcome) {
    std::string text;
    for (const auto& line : failureLines.first(std::min(failureLines.size(), mostFailures)))
        text += (text.empty() ? "" : "\n") + line;
    return {message, text + "\n\n" + outcome, {"OK"}};
}

} // namespace

AlertContent protectedSelectionAlert() {
    return {"Protected files cannot be selected",
            "Ombrel blocked a review-only or protected item. Only individual low-risk files may move to the Trash.",
            {"OK"}};
}

AlertContent changedSinceScanAlert(std::span<const std::string> failureLines) {
    return changedAlert("Some items changed since the scan", failureLines,
                        "Scan again before moving anything. No items were changed.");
}

AlertContent changedBeforeMoveAlert(std::span<const std::string> failureLines) {
    return changedAlert("The files changed before they could be moved", failureLines,
                        "Nothing was moved. Scan again to refresh the safety checks.");
}

AlertContent confirmationAlert(const CandidateTotal& selected) {
    return {"Move " + countText(selected.count, "selected item") + " to the Trash?",
            "This moves approximately " + byteCountText(selected.bytes) +
                " to the Trash so it remains recoverable. The space is not actually freed until you empty the Trash.",
            {"Move to Trash", "Cancel"}};
}

AlertContent misplacedAlert(std::span<const MisplacedItem> items) {
    std::string text;
    for (const auto& item : items)
        text += misplacedLine(item) + "\n";
    return {"Some items could not be put back",
            text + "\nAnother program interfered while they were being moved. Ombrel deleted nothing.",
            {"OK"}};
}

std::string movedText(std::size_t movedCount, std::size_t failureCount, bool recordWritten) {
    const auto text = "Moved " + countText(movedCount, "item") + " to the Trash";
    if (failureCount > 0)
        return text + "; " + std::to_string(failureCount) + " could not be moved";
    return recordWritten ? text + " · a privacy-safe local record was saved" : text;
}

} // namespace vantry
