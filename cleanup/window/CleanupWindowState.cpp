#include "cleanup/window/CleanupWindowState.h"

#include "cleanup/window/AvenueRow.h"
#include "cleanup/window/MoveTexts.h"
#include "cleanup/window/ResultSections.h"
#include "cleanup/window/SummaryTexts.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

using Activity = CleanupWindowState::Activity;

void setTexts(SummaryCardContent& card, SummaryCardTexts texts) {
    card.value = std::move(texts.value);
    card.detail = std::move(texts.detail);
}

std::string filesFoundStatus(const CleanupWindowState& state) {
    switch (state.activity) {
    case Activity::scanning: return "Checking cleanup avenues locally without reading personal document contents…";
    case Activity::checking: return checkingText;
    case Activity::moving: return movingText;
    case Activity::idle:
    case Activity::asking: break;
    }
    return state.summary;
}

void showGuide(CleanupWindowContent& content, const CleanupWindowState& state, HostSystem system) {
    content.selectSuggestedButton.hidden = true;
    content.trashButton.hidden = true;
    content.statusLabel = std::to_string(CleanupAvenue::catalog(system).size()) +
                          " storage areas covered · “Used here” is everything measured in that area. “Shown” is "
                          "only the smaller set of files worth checking.";
    if (!state.copiedCommand.empty())
        content.statusLabel = "Copied “" + state.copiedCommand + "”. Ombrel never runs it: paste it into a terminal.";
    content.selectionLabel =
        "Nothing is removed automatically. Managed and private storage never gets a cleanup checkbox.";
    content.sections = storageGuideSections(state.report, system, [&](CleanupAvenue::Action action) {
        const auto known = state.canOpen.find(action);
        const auto kind = avenueTarget(action, {}, {}, {}).kind; // the same for every home folder
        return avenueButton(action, kind, known == state.canOpen.end() || known->second, system);
    });
}

void showFilesFound(CleanupWindowContent& content, const CleanupWindowState& state, HostSystem system) {
    content.statusLabel = filesFoundStatus(state);
    content.selectionLabel = selectionText(state.selectedTotal.value_or(CandidateTotal()));
    if (state.report.candidates.empty() || state.activity == Activity::scanning)
        content.emptyState = emptyState(state.activity == Activity::scanning, system);
    else
        content.sections = filesFoundSections(state.report, state.selected, system);
}

} // namespace

CleanupWindowContent cleanupWindowContent(const CleanupWindowState& state, HostSystem system) {
    CleanupWindowContent content;
    content.macStorageCard.title = inWordsOf(system, content.macStorageCard.title);
    content.macStorageCard.detail = inWordsOf(system, content.macStorageCard.detail);
    content.notice = inWordsOf(system, content.notice);
    const bool hasScanned = !state.report.states.empty();
    if (hasScanned) {
        setTexts(content.macStorageCard, macStorageTexts(state.report.storageSnapshot, system));
        setTexts(content.foundCard, filesFoundTexts(state.report.candidates));
    }
    if (state.selectedTotal)
        content.selectedCard.value = byteCountText(state.selectedTotal->bytes);

    const bool isIdle = state.activity == Activity::idle;
    content.modeControl = state.mode;
    content.scanButton.enabled = isIdle;
    content.progressIndicator = !isIdle && state.activity != Activity::asking;
    content.selectSuggestedButton.enabled =
        isIdle && std::ranges::any_of(state.report.candidates, &CleanupCandidate::canMoveToTrash);
    content.trashButton.enabled = isIdle && state.selectedTotal && state.selectedTotal->count > 0;
    content.selectionEnabled = isIdle;

    if (state.mode == CleanupWindowMode::storageGuide)
        showGuide(content, state, system);
    else if (hasScanned || state.activity == Activity::scanning)
        showFilesFound(content, state, system);
    if (state.announcement)
        content.statusLabel = *state.announcement;
    return content;
}

} // namespace vantry
