#include "cleanup/window/AvenueRow.h"

#include "cleanup/scan/UsageMeasurement.h"
#include "cleanup/window/AvenueState.h"
#include "cleanup/window/CountText.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <vector>

namespace vantry {

namespace {

std::vector<CleanupByteAmount> occupiedAmounts(const std::set<CleanupCategory>& categories,
                                               const std::map<CleanupCategory, CleanupCategoryMetric>& metrics) {
    std::vector<CleanupByteAmount> amounts;
    for (const auto category : categories) {
        const auto metric = metrics.find(category);
        amounts.push_back(metric == metrics.end() ? CleanupByteAmount::unavailable() : metric->second.occupied);
    }
    return amounts;
}

// Where a category is unknown and the others hold nothing, a lower bound of nothing would say less than it seems to.
std::string amountText(const CleanupByteAmount& combined, bool someAreUnknown) {
    const auto bytes = combined.knownBytes();
    if (!bytes)
        return "Couldn’t measure this area";
    if (combined.isExact())
        return byteCountText(*bytes) + " used here";
    if (*bytes == 0 && someAreUnknown)
        return "Size unavailable";
    return "At least " + byteCountText(*bytes) + " seen";
}

AvenueStatus checkedStatus(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    const auto count = std::ranges::count_if(
        report.candidates, [&](const auto& candidate) { return avenue.categories.contains(candidate.category); });
    const auto usage = usageText(avenue, report);
    if (count > 0)
        return {countText(static_cast<std::size_t>(count), "file"), usage, SystemColor::green};
    if (hasState(avenue, report.states, CleanupScanState::limited))
        return {std::string(title(CleanupScanState::limited)), usage, SystemColor::orange};
    return {"No cleanup files found", usage, SystemColor::blue};
}

} // namespace

CleanupByteAmount combinedOccupiedAmount(const std::set<CleanupCategory>& categories,
                                         const std::map<CleanupCategory, CleanupCategoryMetric>& metrics) {
    return CleanupScanner::combineAmounts(occupiedAmounts(categories, metrics));
}

std::string usageText(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    const auto amounts = occupiedAmounts(avenue.categories, report.metrics);
    const auto combined = CleanupScanner::combineAmounts(amounts);
    const auto text =
        amountText(combined, std::ranges::any_of(amounts, [](const auto& amount) { return !amount.knownBytes(); }));
    if (hasState(avenue, report.states, CleanupScanState::limited))
        return text + " · scan stopped early"; // which is also why a total is not full
    if (text.starts_with("At least"))
        return text + " · full total unavailable";
    return text;
}

AvenueStatus avenueStatus(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    const std::string ofMode(title(avenue.mode));
    switch (avenueState(avenue, report.states)) {
    case AvenueState::notScanned:
        return {ofMode,
                avenue.mode == CleanupAvenue::Mode::includedAbove ? "Counted with Temporary app files"
                                                                  : "Size not measured here",
                color(avenue.mode)};
    case AvenueState::unknown: return {ofMode, "Not measured yet", color(avenue.mode)};
    case AvenueState::permissionNeeded:
        return {std::string(title(CleanupScanState::permissionNeeded)), "Size unavailable", SystemColor::red};
    case AvenueState::unavailable:
        return {std::string(title(CleanupScanState::unavailable)), "Size unavailable", SystemColor::orange};
    case AvenueState::relocated:
        return {std::string(title(CleanupScanState::relocated)), "Size unavailable", SystemColor::blue};
    case AvenueState::notPresent:
        return {std::string(title(CleanupScanState::notPresent)), usageText(avenue, report), SystemColor::blue};
    case AvenueState::checked: break;
    }
    return checkedStatus(avenue, report);
}

AvenueRowContent avenueRow(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    auto status = avenueStatus(avenue, report);
    return {.symbolName = std::string(avenue.symbolName),
            .title = std::string(avenue.title),
            .detail = std::string(avenue.detail),
            .status = std::move(status.primary),
            .usage = std::move(status.secondary),
            .statusColor = status.color,
            .button = std::nullopt};
}

} // namespace vantry
