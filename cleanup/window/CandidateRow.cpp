#include "cleanup/window/CandidateRow.h"

#include "base/Text.h"
#include "platform/TextFormat.h"

namespace vantry {

namespace {

constexpr std::string_view identifierPrefix = "candidate-";

/// The properties of a kind of row.
struct RowKind {
    const char* symbolName;
    SystemColor color;
};

RowKind rowKind(CleanupRemovalDisposition disposition) {
    switch (disposition) {
    case CleanupRemovalDisposition::directTrash: return {"", SystemColor::green};
    case CleanupRemovalDisposition::reviewOnly: return {"eye.fill", SystemColor::orange};
    case CleanupRemovalDisposition::protectedFromRemoval: break;
    }
    return {"lock.shield.fill", SystemColor::blue};
}

} // namespace

std::string controlIdentifier(const CleanupCandidate& candidate) {
    return std::string(identifierPrefix) + candidate.uiID;
}

bool isControlOf(const CleanupCandidate& candidate, std::string_view identifier) {
    return identifier.starts_with(identifierPrefix) && identifier.substr(identifierPrefix.size()) == candidate.uiID;
}

CandidateRowContent candidateRow(const CleanupCandidate& candidate, bool selected, HostSystem system,
                                 bool sizeIsLowerBound) {
    const auto kind = rowKind(candidate.removalDisposition());
    const auto name = singleLine(candidate.title);
    CandidateRowContent row{.identifier = controlIdentifier(candidate),
                            .symbolName = kind.symbolName,
                            .title = name,
                            .reason = inWordsOf(system, candidate.reason),
                            .sizeText = "Uses " + byteCountText(candidate.size),
                            .badge = inWordsOf(system, title(candidate.removalDisposition())),
                            .badgeColor = kind.color,
                            .tooltip = singleLine(candidate.url.native()),
                            .revealAccessibilityLabel = "Reveal " + name + inWordsOf(system, " in Finder"),
                            .revealTooltip = inWordsOf(system, "Reveal in Finder")};
    if (sizeIsLowerBound) {
        row.sizeDetail = "At least " + byteCountText(candidate.size) + "; measuring stopped early";
        row.tooltip += "\n" + row.sizeDetail;
    }
    if (candidate.canMoveToTrash()) {
        row.selected = selected;
        row.selectionAccessibilityLabel = "Select low-risk file " + name;
    } else {
        row.note = inWordsOf(system, "Review in Finder. This item cannot be selected here.");
    }
    return row;
}

} // namespace vantry
