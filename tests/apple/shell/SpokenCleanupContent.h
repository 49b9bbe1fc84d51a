#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <string>
#include <vector>

namespace vantry::apple {

/// What `spokenContents` must return for a window that shows `content`.
[[nodiscard]] inline std::vector<std::string> spokenContents(const CleanupWindowContent& content) {
    std::vector<std::string> lines;
    std::string indentation;
    const auto add = [&](const std::string& role, const std::string& name, const std::string& state = {}) {
        lines.push_back(indentation + role + " " + name + (state.empty() ? "" : " (" + state + ")"));
    };
    const auto labels = [&](std::initializer_list<std::string> texts) {
        for (const std::string& text : texts)
            if (!text.empty())
                add("label", text);
    };
    const auto button = [&](const CleanupButtonContent& each) {
        if (!each.hidden)
            add("push button", each.title, each.enabled ? "" : "disabled");
    };
    labels({content.titleLabel, content.subtitleLabel});
    for (const SummaryCardContent* card : {&content.macStorageCard, &content.foundCard, &content.selectedCard}) {
        add("group", card->title);
        indentation = "  ";
        labels({card->title, card->value, card->detail});
        indentation.clear();
    }
    for (std::size_t mode = 0; mode < content.modeLabels.size(); ++mode)
        add("radio button", content.modeLabels[mode],
            static_cast<std::size_t>(content.modeControl) == mode ? "checked" : "");
    button(content.scanButton);
    if (content.progressIndicator)
        add("progress bar", content.statusLabel);
    button(content.selectSuggestedButton);
    button(content.trashButton);
    labels({content.notice, content.statusLabel, content.selectionLabel});
    for (const CleanupSectionContent& section : content.sections) {
        labels({section.title, section.subtitle, section.trailingText});
        add("list", section.title);
        for (const CandidateRowContent& row : section.candidates) {
            indentation = "  ";
            add("group", row.title);
            indentation = "    ";
            if (row.symbolName.empty())
                add("check box", row.selectionAccessibilityLabel,
                    std::string(row.selected ? "checked" : "") +
                        (row.selected && !content.selectionEnabled ? ", " : "") +
                        (content.selectionEnabled ? "" : "disabled"));
            labels({row.title, row.reason, row.note, row.sizeText, row.badge});
            add("push button", row.revealAccessibilityLabel);
        }
        for (const AvenueRowContent& row : section.avenues) {
            indentation = "  ";
            add("group", row.title);
            indentation = "    ";
            labels({row.title, row.detail, row.status, row.usage});
            if (row.button)
                add("push button", row.button->title, row.button->enabled ? "" : "disabled");
        }
        indentation.clear();
    }
    if (content.emptyState) {
        add("group", content.emptyState->title);
        indentation = "  ";
        labels({content.emptyState->title, content.emptyState->detail});
    }
    return lines;
}

} // namespace vantry::apple
