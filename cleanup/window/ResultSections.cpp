#include "cleanup/window/ResultSections.h"

#include "cleanup/window/AvenueRow.h"
#include "cleanup/window/CandidateRow.h"
#include "cleanup/window/CountText.h"

namespace vantry {

namespace {

CleanupSectionContent sectionOf(const CleanupAreaRow& area) {
    return {.area = area.value,
            .symbolName = std::string(area.symbolName),
            .title = std::string(area.title),
            .subtitle = std::string(area.subtitle)};
}

} // namespace

std::vector<CleanupSectionContent> filesFoundSections(const CleanupScanReport& report, const SelectedPaths& selected) {
    std::vector<CleanupSectionContent> sections;
    for (const auto& row : allCleanupAreas) {
        auto section = sectionOf(row);
        for (const auto& candidate : report.candidates)
            if (area(candidate.category) == row.value)
                section.candidates.push_back(candidateRow(candidate, selected.contains(candidate.url.native()),
                                                          report.sizeIsLowerBound(candidate)));
        if (section.candidates.empty())
            continue;
        section.trailingText = countText(section.candidates.size(), "item");
        sections.push_back(std::move(section));
    }
    return sections;
}

std::vector<CleanupSectionContent>
storageGuideSections(const CleanupScanReport& report,
                     const std::function<AvenueButtonContent(CleanupAvenue::Action)>& button) {
    std::vector<CleanupSectionContent> sections;
    for (const auto& row : allCleanupAreas) {
        auto section = sectionOf(row);
        for (const auto& avenue : CleanupAvenue::catalog())
            if (avenue.area == row.value) {
                section.avenues.push_back(avenueRow(avenue, report));
                section.avenues.back().button = avenue.action.transform(button);
            }
        section.trailingText = countText(section.avenues.size(), "avenue");
        sections.push_back(std::move(section));
    }
    return sections;
}

EmptyStateContent emptyState(bool scanInFlight) {
    if (scanInFlight)
        return {"magnifyingglass", "Checking storage…",
                "Only file sizes, dates, and types are checked. Personal file contents stay untouched."};
    return {"checkmark.circle", "No cleanup files found",
            "The scan found 0 B it can offer here. Open Storage Guide for space managed by apps or macOS."};
}

} // namespace vantry
