#include "cleanup/window/SummaryTexts.h"

#include "base/ByteSum.h"
#include "base/Text.h"
#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/window/AvenueRow.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <vector>

namespace vantry {

namespace {

std::string storageText(const StorageSnapshot& snapshot, HostSystem system) {
    return inWordsOf(system, "This Mac uses ") + byteCountText(snapshot.usedBytes()) + " of " +
           byteCountText(snapshot.totalBytes);
}

std::string foundText(const std::vector<CleanupCandidate>& candidates) {
    if (candidates.empty())
        return "0 B of cleanup files found";
    const auto total = totalOf(candidates);
    return countText(total.count, "file") + " shown use " + byteCountText(total.bytes);
}

std::string selectableText(const std::vector<CleanupCandidate>& candidates) {
    const auto count = std::ranges::count_if(candidates, &CleanupCandidate::canMoveToTrash);
    return countText(static_cast<std::size_t>(count), "low-risk file") + " can be selected";
}

std::size_t avenueCount(const CleanupScanReport& report, AvenueState state) {
    return static_cast<std::size_t>(std::ranges::count_if(
        CleanupAvenue::catalog(), [&](const auto& avenue) { return avenueState(avenue, report) == state; }));
}

// What the scan left out.
std::vector<std::string> missingTexts(const CleanupScanReport& report) {
    std::vector<std::string> texts;
    if (const auto count = avenueCount(report, AvenueState::permissionNeeded); count != 0)
        texts.push_back(countText(count, "avenue") + " needs access");
    if (const auto count = avenueCount(report, AvenueState::unavailable); count != 0)
        texts.push_back(countText(count, "avenue") + " unavailable");
    if (std::ranges::any_of(report.states, [](const auto& state) { return state.second == CleanupScanState::limited; }))
        texts.emplace_back("some totals are minimums because a scan stopped early");
    return texts;
}

} // namespace

void CandidateTotal::add(const CleanupCandidate& candidate) {
    ++count;
    addBytes(bytes, candidate.size);
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

SummaryCardTexts macStorageTexts(const std::optional<StorageSnapshot>& snapshot, HostSystem system) {
    if (!snapshot)
        return {"Unavailable", inWordsOf(system, "Mac storage size could not be read")};
    const auto used = byteCountText(snapshot->usedBytes());
    return {used, used + " used of " + byteCountText(snapshot->totalBytes) + " total"};
}

SummaryCardTexts filesFoundTexts(std::span<const CleanupCandidate> candidates) {
    const auto total = totalOf(candidates);
    return {byteCountText(total.bytes), countText(total.count, "file") + " shown; nothing removed automatically"};
}

std::string scanSummaryText(const CleanupScanReport& report, HostSystem system) {
    const auto missing = missingTexts(report);
    std::vector<std::string> pieces;
    if (report.storageSnapshot && missing.empty())
        pieces.emplace_back("Scan complete");
    pieces.push_back(report.storageSnapshot ? storageText(*report.storageSnapshot, system)
                                            : inWordsOf(system, "Mac storage total unavailable"));
    pieces.push_back(foundText(report.candidates));
    pieces.push_back(selectableText(report.candidates));
    pieces.insert(pieces.end(), missing.begin(), missing.end());
    std::string line;
    for (const auto& piece : pieces)
        line += (line.empty() ? "" : " · ") + piece;
    return line;
}

} // namespace vantry
