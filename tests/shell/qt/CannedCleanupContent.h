#pragma once

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupCategory.h"
#include "cleanup/window/CleanupWindowContent.h"

#include <algorithm>
#include <string>

namespace vantry {

/// The row of candidate `number`: every third can be selected, every fifth of the others is protected.
[[nodiscard]] inline CandidateRowContent cannedCandidate(int number) {
    CandidateRowContent row;
    const std::string name = std::to_string(number);
    row.identifier = "candidate-" + name;
    row.title = number % 11 == 7 ? "A file with a name that is far longer than the line of a row can be, number " +
                                       name + " of the archives that were made in the last year, second part.dmg"
                                 : "Installer " + name + ".dmg";
    row.sizeText = "Uses " + std::to_string(100 + number * 7 % 900) + "." + std::to_string(number % 10) + " MB";
    row.tooltip = "/home/somebody/Downloads/" + row.title;
    row.revealAccessibilityLabel = "Reveal " + row.title + " in Finder";
    row.revealTooltip = "Reveal in Finder";
    if (number % 3 == 0) {
        row.selectionAccessibilityLabel = "Select low-risk file " + row.title;
        row.reason = "Downloaded more than 21 days ago. Removing it does not uninstall the app.";
        row.badge = "Low Risk";
        row.badgeColor = SystemColor::green;
        return row;
    }
    row.note = "Review in Finder. This item cannot be selected here.";
    const bool isProtected = number % 5 == 0;
    row.symbolName = isProtected ? "lock.shield.fill" : "eye.fill";
    row.reason =
        isProtected
            ? "A newer local backup for the same device was found. Verify the newer backup before removing this one."
            : "Not changed for 45 days. It may be your only copy, so open it before deciding.";
    row.badge = isProtected ? "Protected" : "Review in Finder";
    row.badgeColor = isProtected ? SystemColor::blue : SystemColor::orange;
    return row;
}

[[nodiscard]] inline CleanupSectionContent cannedSection(const CleanupAreaRow& area) {
    return {.area = area.value,
            .symbolName = std::string(area.symbolName),
            .title = std::string(area.title),
            .subtitle = std::string(area.subtitle)};
}

/// A content with `count` candidates, in sections of the first areas.
[[nodiscard]] inline CleanupWindowContent cannedFiles(int count) {
    CleanupWindowContent content;
    content.macStorageCard.value = "334.38 GB";
    content.macStorageCard.detail = "334.38 GB used of 494.38 GB total";
    content.foundCard.value = "18.04 GB";
    content.foundCard.detail = std::to_string(count) + " files shown; nothing removed automatically";
    content.selectedCard.value = "0 B";
    content.selectSuggestedButton.enabled = true;
    content.statusLabel = "This Mac uses 334.38 GB of 494.38 GB · " + std::to_string(count) +
                          " files shown use 18.04 GB · " + std::to_string(count / 3) +
                          " low-risk files can be selected · 2 avenues needs access";
    content.selectionLabel = "Nothing selected · Only low-risk files can be selected";
    constexpr int sectionCount = 5;
    for (int section = 0, number = 0; section < sectionCount; ++section) {
        CleanupSectionContent next = cannedSection(allCleanupAreas.at(static_cast<std::size_t>(section)));
        const int end = count * (section + 1) / sectionCount;
        while (number < end)
            next.candidates.push_back(cannedCandidate(number++));
        next.trailingText = std::to_string(next.candidates.size()) + " items";
        if (!next.candidates.empty())
            content.sections.push_back(next);
    }
    return content;
}

/// The Storage Guide, with every avenue of the catalog.
[[nodiscard]] inline CleanupWindowContent cannedGuide() {
    CleanupWindowContent content = cannedFiles(0);
    content.modeControl = CleanupWindowMode::storageGuide;
    content.selectSuggestedButton.hidden = true;
    content.trashButton.hidden = true;
    content.statusLabel = "37 storage areas covered · “Used here” is everything measured in that area. “Shown” is only "
                          "the smaller set of files worth checking.";
    content.selectionLabel =
        "Nothing is removed automatically. Managed and private storage never gets a cleanup checkbox.";
    for (const CleanupAreaRow& area : allCleanupAreas) {
        CleanupSectionContent next = cannedSection(area);
        for (const CleanupAvenue& avenue : CleanupAvenue::catalog()) {
            if (avenue.area != area.value)
                continue;
            AvenueRowContent row;
            row.symbolName = avenue.symbolName;
            row.title = avenue.title;
            row.detail = avenue.detail;
            row.status = title(avenue.mode);
            row.statusColor = color(avenue.mode);
            row.usage = "Size not measured here";
            if (avenue.mode == CleanupAvenue::Mode::scanned && next.avenues.size() % 2 == 0) {
                row.status = "12 files";
                row.usage = "At least 12.4 GB seen · scan stopped early";
            }
            if (avenue.action)
                row.button = {std::string(title(*avenue.action)), "", *avenue.action, next.avenues.size() % 4 != 3};
            next.avenues.push_back(row);
        }
        next.trailingText = std::to_string(next.avenues.size()) + " avenues";
        content.sections.push_back(next);
    }
    return content;
}

[[nodiscard]] inline CleanupWindowContent cannedScan() {
    CleanupWindowContent content;
    content.scanButton.enabled = false;
    content.progressIndicator = true;
    content.statusLabel = "Measuring storage and checking only approved low-risk locations…";
    content.selectionLabel = "Nothing selected · Only low-risk files can be selected";
    content.emptyState = {"magnifyingglass", "Checking storage…",
                          "Only file sizes, dates, and types are checked. Personal file contents stay untouched."};
    return content;
}

} // namespace vantry
