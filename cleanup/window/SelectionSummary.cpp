#include "cleanup/window/SelectionSummary.h"

#include "platform/TextFormat.h"

#include <limits>

namespace vantry {

void CandidateTotal::add(const CleanupCandidate& candidate) {
    ++count;
    if (__builtin_add_overflow(bytes, candidate.size, &bytes))
        bytes = std::numeric_limits<std::int64_t>::max();
}

CandidateTotal totalOf(std::span<const CleanupCandidate> candidates) {
    CandidateTotal total;
    for (const auto& candidate : candidates)
        total.add(candidate);
    return total;
}

CandidateTotal selectedTotal(std::span<const CleanupCandidate> candidates, const SelectedPaths& selected) {
    CandidateTotal total;
    for (const auto& candidate : candidates)
        if (candidate.canMoveToTrash() && selected.contains(candidate.url.native()))
            total.add(candidate);
    return total;
}

std::string selectionText(const CandidateTotal& selected) {
    if (selected.count == 0)
        return "Nothing selected · Only low-risk files can be selected";
    return std::to_string(selected.count) + " selected · " + byteCountText(selected.bytes) + " will move to Trash";
}

} // namespace vantry
