#include "cleanup/window/ResultSections.h"

#include "base/Text.h"
#include "cleanup/window/AvenueRow.h"
#include "cleanup/window/CandidateRow.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantry {

namespace {

CleanupSectionContent sectionOf(const CleanupAreaRow& area, HostSystem system) {
    return {.area = area.value,
            .symbolName = std::string(area.symbolName),
            .title = inWordsOf(system, area.title),
            .subtitle = std::string(area.subtitle)};
}

} // namespace

std::vector<CleanupSectionContent> filesFoundSections(const CleanupScanReport& report, const SelectedPaths& selected,
                                                      HostSystem system) {
    std::vector<CleanupSectionContent> sections;
    for (const auto& row : allCleanupAreas) {
        auto section = sectionOf(row, system);
        for (const auto& candidate : report.candidates)
            if (area(candidate.category) == row.value)
                section.candidates.push_back(candidateRow(candidate, selected.contains(candidate.url.native()), system,
                                                          report.sizeIsLowerBound(candidate)));
        if (section.candidates.empty())
            continue;
        section.trailingText = countText(section.candidates.size(), "item");
        sections.push_back(std::move(section));
    }
    return sections;
}

std::vector<CleanupSectionContent>
storageGuideSections(const CleanupScanReport& report, HostSystem system,
                     const std::function<AvenueButtonContent(CleanupAvenue::Action)>& button) {
    std::vector<CleanupSectionContent> sections;
    for (const auto& row : allCleanupAreas) {
        auto section = sectionOf(row, system);
        std::vector<AvenueRowContent> absent;
        for (const auto& avenue : CleanupAvenue::catalog(system)) {
            if (avenue.area != row.value)
                continue;
            auto content = avenueRow(avenue, report, system);
            content.button = offersCommand(avenue, report) ? commandButton(avenue) : avenue.action.transform(button);
            const bool isAbsent = system != HostSystem::macOS && avenueState(avenue, report) == AvenueState::notPresent;
            (isAbsent ? absent : section.avenues).push_back(std::move(content));
        }
        std::ranges::move(absent, std::back_inserter(section.avenues));
        section.trailingText = countText(section.avenues.size(), "avenue");
        sections.push_back(std::move(section));
    }
    return sections;
}

EmptyStateContent emptyState(bool scanInFlight, HostSystem system) {
    if (scanInFlight)
        return {"magnifyingglass", "Checking storage…",
                "Only file sizes, dates, and types are checked. Personal file contents stay untouched."};
    return {"checkmark.circle", "No cleanup files found",
            inWordsOf(system,
                      "The scan found 0 B it can offer here. Open Storage Guide for space managed by apps or macOS.")};
}

} // namespace vantry
