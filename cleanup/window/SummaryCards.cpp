#include "cleanup/window/SummaryCards.h"

#include "cleanup/window/CountText.h"
#include "cleanup/window/SelectionSummary.h"
#include "platform/TextFormat.h"

namespace vantry {

SummaryCardTexts macStorageTexts(const std::optional<StorageSnapshot>& snapshot) {
    if (!snapshot)
        return {"Unavailable", "Mac storage size could not be read"};
    const auto used = byteCountText(snapshot->usedBytes());
    return {used, used + " used of " + byteCountText(snapshot->totalBytes) + " total"};
}

SummaryCardTexts filesFoundTexts(std::span<const CleanupCandidate> candidates) {
    const auto total = totalOf(candidates);
    return {byteCountText(total.bytes), countText(total.count, "file") + " shown; nothing removed automatically"};
}

} // namespace vantry
