#include "cleanup/window/CleanupWindowController.h"

#include "cleanup/window/AvenueTarget.h"
#include "cleanup/window/CandidateRow.h"
#include "cleanup/window/MoveTexts.h"
#include "cleanup/window/ResultSections.h"
#include "cleanup/window/ScanSummaryText.h"
#include "cleanup/window/SummaryCards.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

void applyTexts(SummaryCardContent& card, SummaryCardTexts texts) {
    card.value = std::move(texts.value);
    card.detail = std::move(texts.detail);
}

} // namespace

CleanupWindowController::CleanupWindowController(CleanupWindowShell& shell, std::shared_ptr<MainQueue> mainQueue,
                                                 std::shared_ptr<BackgroundQueue> backgroundQueue,
                                                 std::shared_ptr<Workspace> workspace, CleanupServices services)
    : shell_(shell),
      mainQueue_(std::move(mainQueue)),
      backgroundQueue_(std::move(backgroundQueue)),
      workspace_(std::move(workspace)),
      services_(std::move(services)) {}

// ---- the scan

void CleanupWindowController::showAndScan() {
    shell_.showCleanupWindow();
    scan();
}

void CleanupWindowController::scan() {
    if (activity_ != Activity::idle)
        return;
    begin(Activity::scanning);
    selectedPaths_.clear();
    if (canOpen_.empty())
        findOutWhatCanBeOpened();
    content_.statusLabel = "Measuring storage and checking only approved low-risk locations…";
    updateSelectionSummary();
    render();
    renderResults();
    render();
    backgroundQueue_->submit(QualityOfService::userInitiated,
                             [weak = weak_from_this(), queue = mainQueue_, scan = services_.scan,
                              running = workspace_->runningBundleIdentifiers()] {
                                 if (weak.expired())
                                     return;
                                 queue->post([weak, report = std::make_shared<CleanupScanReport>(scan(running))] {
                                     if (const auto self = weak.lock())
                                         self->finishScan(std::move(*report));
                                 });
                             });
}

void CleanupWindowController::finishScan(CleanupScanReport report) {
    report_ = std::move(report);
    findOutWhatCanBeOpened();
    endActivity();
    scanSummary_ = scanSummaryText(report_);
    updateSummaryCards();
    renderResults();
    render();
    shell_.scrollCleanupResultsToTop();
}

// ---- the controls

void CleanupWindowController::scanPressed() { scan(); }

void CleanupWindowController::modeChanged(CleanupWindowMode mode) {
    content_.modeControl = mode;
    renderResults();
    render();
}

void CleanupWindowController::candidateSelectionChanged(std::string_view identifier, bool isOn) {
    const auto* changed = candidate(identifier);
    if (!changed || activity_ != Activity::idle)
        return;
    if (isOn && changed->canMoveToTrash())
        selectedPaths_.insert(changed->url.native());
    else
        selectedPaths_.erase(changed->url.native());
    // The one row instead of all of them: a list may be long.
    for (auto& section : content_.sections)
        for (auto& row : section.candidates)
            if (row.identifier == identifier)
                row.selected = isSelected(*changed);
    updateSelectionSummary();
    render();
}

void CleanupWindowController::selectSuggestedPressed() {
    if (activity_ != Activity::idle)
        return;
    selectedPaths_.clear();
    for (const auto& found : report_.candidates)
        if (found.canMoveToTrash())
            selectedPaths_.insert(found.url.native());
    renderResults();
    render();
}

void CleanupWindowController::revealPressed(std::string_view identifier) {
    if (const auto* found = candidate(identifier))
        workspace_->revealItem(found->url);
}

void CleanupWindowController::avenueActionPressed(CleanupAvenue::Action action) {
    const auto target = avenueTarget(action, services_.home, services_.applications);
    switch (target.kind) {
    case AvenueTarget::Kind::homeFolder:
    case AvenueTarget::Kind::systemFolder: openFolder(target.path); break;
    case AvenueTarget::Kind::application: openApplication(target.path); break;
    case AvenueTarget::Kind::settingsPane: openSystemSettings(target.url); break;
    }
}

// ---- the move

void CleanupWindowController::trashPressed() {
    if (activity_ != Activity::idle)
        return;
    auto selected = selectedCandidates();
    if (selected.empty())
        return;
    if (std::ranges::all_of(selected, &CleanupCandidate::canMoveToTrash)) {
        validate(std::move(selected), &CleanupWindowController::confirm);
        return;
    }
    for (const auto& found : selected)
        if (!found.canMoveToTrash())
            selectedPaths_.erase(found.url.native());
    renderResults();
    ask(protectedSelectionAlert(), {});
}

void CleanupWindowController::validate(Candidates selected, Check checked) {
    begin(Activity::checking);
    updateModeControls();
    render();
    backgroundQueue_->submit(
        QualityOfService::userInitiated,
        [weak = weak_from_this(), queue = mainQueue_, services = services_, checked, number = ++checkNumber_,
         candidates = std::make_shared<const Candidates>(std::move(selected))] {
            if (weak.expired())
                return;
            queue->post([weak, candidates, checked, number, lines = validationFailureLines(services, *candidates)] {
                if (const auto self = weak.lock(); self && self->checkNumber_ == number)
                    self->finishCheck(*candidates, lines, checked);
            });
        });
}

// What was checked moves on only if it still is what the user selected, in a window that they can see.
void CleanupWindowController::finishCheck(const Candidates& selected, const std::vector<std::string>& failureLines,
                                          Check checked) {
    endActivity();
    if (selectedCandidates() == selected && shell_.cleanupWindowIsShown())
        (this->*checked)(selected, failureLines);
    else
        render();
}

void CleanupWindowController::cancelPressed() {
    if (activity_ != Activity::checking)
        return;
    ++checkNumber_; // the check may hang, so nobody waits for it
    endActivity();
    render();
}

void CleanupWindowController::windowClosed() { cancelPressed(); }

void CleanupWindowController::confirm(const Candidates& selected, const std::vector<std::string>& failureLines) {
    if (!failureLines.empty()) {
        ask(changedSinceScanAlert(failureLines), {});
        return;
    }
    ask(confirmationAlert(totalOf(selected)), [selected](CleanupWindowController& self, AlertAnswer answer) {
        if (answer == AlertAnswer::first)
            self.moveToTrash(selected);
    });
}

void CleanupWindowController::moveToTrash(Candidates candidates) {
    if (!std::ranges::all_of(candidates, &CleanupCandidate::canMoveToTrash) || !shell_.cleanupWindowIsShown())
        return;
    validate(std::move(candidates), &CleanupWindowController::startMove);
}

void CleanupWindowController::startMove(const Candidates& candidates, const std::vector<std::string>& failureLines) {
    if (!failureLines.empty()) {
        ask(changedBeforeMoveAlert(failureLines), {});
        return;
    }
    begin(Activity::moving);
    updateModeControls();
    render();
    move_ = std::make_shared<MoveControl>();
    backgroundQueue_->submit(QualityOfService::userInitiated, [weak = weak_from_this(), queue = mainQueue_,
                                                               services = services_, candidates, control = move_] {
        if (weak.expired())
            return;
        queue->post([weak, outcome = vantry::moveToTrash(services, candidates, *control)] {
            if (const auto self = weak.lock())
                self->finishMove(outcome);
        });
    });
}

void CleanupWindowController::finishMove(const MoveOutcome& outcome) {
    for (const auto& moved : outcome.moved)
        forget(moved);
    for (const auto& item : outcome.misplaced)
        forget(item.candidate);
    endActivity();
    scanSummary_ = movedText(outcome.moved.size(), outcome.failureLines.size(), outcome.recordWritten);
    updateSummaryCards();
    renderResults();
    render();
    if (outcome.misplaced.empty())
        return;
    if (!shell_.cleanupWindowIsShown())
        shell_.showCleanupWindow(); // the user has to learn where the file is
    ask(misplacedAlert(outcome.misplaced), {});
}

// The item is not in its place any more.
void CleanupWindowController::forget(const CleanupCandidate& gone) {
    selectedPaths_.erase(gone.url.native());
    std::erase_if(report_.candidates, [&](const auto& found) { return found.uiID == gone.uiID; });
}

void CleanupWindowController::applicationWillTerminate() {
    services_.stopScanning();
    if (move_)
        move_->stop(services_.longestEnding);
}

void CleanupWindowController::ask(const AlertContent& alert,
                                  std::function<void(CleanupWindowController&, AlertAnswer)> answered) {
    begin(Activity::asking);
    render();
    shell_.ask(alert, [weak = weak_from_this(), answered = std::move(answered)](AlertAnswer answer) {
        const auto self = weak.lock();
        if (!self)
            return;
        self->endActivity();
        if (answered)
            answered(*self, answer);
        self->render();
    });
}

// ---- what is shown

void CleanupWindowController::begin(Activity activity) {
    activity_ = activity;
    content_.scanButton.enabled = false;
    content_.selectSuggestedButton.enabled = false;
    content_.trashButton.enabled = false;
    content_.selectionEnabled = false;
    content_.progressIndicator = activity != Activity::asking;
}

void CleanupWindowController::endActivity() {
    activity_ = Activity::idle;
    content_.scanButton.enabled = true;
    content_.selectSuggestedButton.enabled = std::ranges::any_of(report_.candidates, &CleanupCandidate::canMoveToTrash);
    content_.selectionEnabled = true;
    content_.progressIndicator = false;
    updateModeControls();
}

void CleanupWindowController::updateModeControls() {
    const bool isGuide = content_.modeControl == CleanupWindowMode::storageGuide;
    content_.selectSuggestedButton.hidden = isGuide;
    content_.trashButton.hidden = isGuide;
    if (isGuide) {
        content_.statusLabel = std::to_string(CleanupAvenue::catalog().size()) +
                               " storage areas covered · “Used here” is everything measured in that area. “Shown” is "
                               "only the smaller set of files worth checking.";
        content_.selectionLabel =
            "Nothing is removed automatically. Managed and private storage never gets a cleanup checkbox.";
        return;
    }
    content_.statusLabel = statusText();
    updateSelectionSummary();
}

std::string CleanupWindowController::statusText() const {
    switch (activity_) {
    case Activity::scanning: return "Checking cleanup avenues locally without reading personal document contents…";
    case Activity::checking: return checkingText;
    case Activity::moving: return movingText;
    case Activity::idle:
    case Activity::asking: break;
    }
    return scanSummary_;
}

void CleanupWindowController::updateSummaryCards() {
    applyTexts(content_.macStorageCard, macStorageTexts(report_.storageSnapshot));
    applyTexts(content_.foundCard, filesFoundTexts(report_.candidates));
}

void CleanupWindowController::updateSelectionSummary() {
    if (content_.modeControl == CleanupWindowMode::storageGuide)
        return;
    const auto selected = selectedTotal(report_.candidates, selectedPaths_);
    content_.selectedCard.value = byteCountText(selected.bytes);
    content_.selectionLabel = selectionText(selected);
    content_.trashButton.enabled = selected.count > 0 && activity_ == Activity::idle;
}

void CleanupWindowController::renderResults() {
    content_.emptyState.reset();
    content_.sections.clear();
    if (content_.modeControl == CleanupWindowMode::storageGuide)
        content_.sections = storageGuideSections(report_, [&](CleanupAvenue::Action action) {
            const auto kind = avenueTarget(action, services_.home, services_.applications).kind;
            const auto known = canOpen_.find(action);
            return avenueButton(action, kind, known == canOpen_.end() || known->second);
        });
    else if (report_.candidates.empty() || activity_ == Activity::scanning)
        content_.emptyState = emptyState(activity_ == Activity::scanning);
    else
        content_.sections = filesFoundSections(report_, selectedPaths_);
    updateModeControls();
}

void CleanupWindowController::render() { shell_.renderCleanupWindow(content_); }

// ---- questions and places

const CleanupCandidate* CleanupWindowController::candidate(std::string_view forUIIdentifier) const {
    const auto found = std::ranges::find_if(
        report_.candidates, [&](const auto& candidate) { return isControlOf(candidate, forUIIdentifier); });
    return found == report_.candidates.end() ? nullptr : &*found;
}

bool CleanupWindowController::isSelected(const CleanupCandidate& candidate) const {
    return selectedPaths_.contains(candidate.url.native());
}

CleanupWindowController::Candidates CleanupWindowController::selectedCandidates() const {
    Candidates selected;
    std::ranges::copy_if(report_.candidates, std::back_inserter(selected),
                         [&](const auto& candidate) { return isSelected(candidate); });
    return selected;
}

void CleanupWindowController::findOutWhatCanBeOpened() {
    for (const auto& row : allCleanupAvenueActions) {
        const auto target = avenueTarget(row.value, services_.home, services_.applications);
        canOpen_[row.value] = target.kind == AvenueTarget::Kind::settingsPane ? workspace_->canOpenURL(target.url)
                                                                              : workspace_->canOpenItem(target.path);
    }
}

void CleanupWindowController::openFolder(const std::filesystem::path& path) { workspace_->openItem(path); }
void CleanupWindowController::openApplication(const std::filesystem::path& path) { workspace_->openItem(path); }
void CleanupWindowController::openSystemSettings(const std::string& paneURL) { workspace_->openSettingsPane(paneURL); }

} // namespace vantry
