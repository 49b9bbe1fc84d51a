#include "cleanup/window/CleanupWindowController.h"

#include "cleanup/window/AvenueRow.h"
#include "cleanup/window/CandidateRow.h"
#include "cleanup/window/MoveTexts.h"
#include "cleanup/window/SummaryTexts.h"

#include <algorithm>
#include <utility>

namespace vantry {

CleanupWindowController::CleanupWindowController(CleanupWindowShell& shell, std::shared_ptr<MainQueue> mainQueue,
                                                 std::shared_ptr<BackgroundQueue> backgroundQueue,
                                                 std::shared_ptr<Workspace> workspace, CleanupServices services)
    : shell_(shell),
      mainQueue_(std::move(mainQueue)),
      backgroundQueue_(std::move(backgroundQueue)),
      workspace_(std::move(workspace)),
      services_(std::move(services)),
      content_(cleanupWindowContent(state_, services_.system)) {}

// ---- the scan

void CleanupWindowController::showAndScan() {
    shell_.showCleanupWindow();
    scan();
}

void CleanupWindowController::scan() {
    if (state_.activity != Activity::idle)
        return;
    state_.activity = Activity::scanning;
    state_.selected.clear();
    state_.copiedCommand.clear();
    stopMeasuringGuide();
    if (state_.canOpen.empty())
        findOutWhatCanBeOpened();
    updateSelectionSummary();
    state_.announcement = "Measuring storage and checking only approved low-risk locations…";
    render();
    state_.announcement.reset();
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
    report.guide = std::move(state_.report.guide); // until it is measured again
    state_.report = std::move(report);
    state_.activity = Activity::idle;
    state_.summary = scanSummaryText(state_.report, services_.system);
    findOutWhatCanBeOpened();
    render();
    shell_.scrollCleanupResultsToTop();
    measureGuide();
}

void CleanupWindowController::measureGuide() {
    if (!services_.measureGuide || !shell_.cleanupWindowIsShown()) // opening the window scans again
        return;
    stopMeasuringGuide();
    guideIsWanted_ = std::make_shared<std::atomic<bool>>(true);
    backgroundQueue_->submit(QualityOfService::utility, [weak = weak_from_this(), queue = mainQueue_,
                                                         measure = services_.measureGuide, isWanted = guideIsWanted_] {
        const auto isStillWanted = [weak, isWanted] { return isWanted->load() && !weak.expired(); };
        if (!isStillWanted())
            return;
        queue->post(
            [weak, isWanted, guide = std::make_shared<std::map<std::string, GuideUsage>>(measure(isStillWanted))] {
                const auto self = weak.lock();
                if (!self || self->guideIsWanted_ != isWanted)
                    return;
                self->guideIsWanted_.reset();
                self->state_.report.guide = std::move(*guide);
                self->render();
            });
    });
}

void CleanupWindowController::stopMeasuringGuide() {
    if (const auto isWanted = std::exchange(guideIsWanted_, nullptr))
        isWanted->store(false);
}

// ---- the controls

void CleanupWindowController::scanPressed() { scan(); }

void CleanupWindowController::modeChanged(CleanupWindowMode mode) {
    const bool isOther = std::exchange(state_.mode, mode) != mode;
    state_.copiedCommand.clear();
    updateSelectionSummary();
    render();
    if (isOther)
        shell_.scrollCleanupResultsToTop();
}

void CleanupWindowController::candidateSelectionChanged(std::string_view identifier, bool isOn) {
    const auto* changed = candidate(identifier);
    if (!changed || state_.activity != Activity::idle)
        return;
    if (isOn && changed->canMoveToTrash())
        state_.selected.insert(changed->url.native());
    else
        state_.selected.erase(changed->url.native());
    updateSelectionSummary();
    render();
}

void CleanupWindowController::selectSuggestedPressed() {
    if (state_.activity != Activity::idle)
        return;
    for (const auto& found : state_.report.candidates)
        if (found.canMoveToTrash())
            state_.selected.insert(found.url.native());
    updateSelectionSummary();
    render();
}

void CleanupWindowController::revealPressed(std::string_view identifier) {
    if (const auto* found = candidate(identifier))
        workspace_->revealItem(found->url);
}

void CleanupWindowController::avenueActionPressed(const AvenueButtonAction& action) {
    if (const auto* copy = std::get_if<CopyCommand>(&action)) {
        workspace_->copyText(copy->command);
        state_.copiedCommand = copy->command;
        render();
        return;
    }
    const auto target = avenueTarget(std::get<CleanupAvenue::Action>(action), services_.home, services_.downloads,
                                     services_.applications);
    switch (target.kind) {
    case AvenueTarget::Kind::homeFolder:
    case AvenueTarget::Kind::systemFolder: openFolder(target.path); break;
    case AvenueTarget::Kind::application: openApplication(target.path); break;
    case AvenueTarget::Kind::settingsPane: openSystemSettings(target.url); break;
    }
}

// ---- the move

void CleanupWindowController::trashPressed() {
    if (state_.activity != Activity::idle)
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
            state_.selected.erase(found.url.native());
    updateSelectionSummary();
    ask(protectedSelectionAlert(), {});
}

void CleanupWindowController::validate(Candidates selected, Check checked) {
    state_.activity = Activity::checking;
    render();
    backgroundQueue_->submit(
        QualityOfService::userInitiated,
        [weak = weak_from_this(), queue = mainQueue_, services = services_.move, checked, number = ++checkNumber_,
         candidates = std::make_shared<const Candidates>(std::move(selected))] {
            if (weak.expired())
                return;
            queue->post([weak, candidates, checked, number, lines = validationFailureLines(services, *candidates)] {
                if (const auto self = weak.lock(); self && self->checkNumber_ == number)
                    self->finishCheck(*candidates, lines, checked);
            });
        });
}

// The checked files move on only if they are still the selected ones, in a window that the user can see.
void CleanupWindowController::finishCheck(const Candidates& selected, const std::vector<std::string>& failureLines,
                                          Check checked) {
    state_.activity = Activity::idle;
    if (selectedCandidates() == selected && shell_.cleanupWindowIsShown())
        (this->*checked)(selected, failureLines);
    else
        render();
}

void CleanupWindowController::cancelPressed() {
    if (state_.activity != Activity::checking)
        return;
    ++checkNumber_; // do not wait for the check: it may hang
    state_.activity = Activity::idle;
    render();
}

void CleanupWindowController::windowClosed() {
    stopMeasuringGuide();
    cancelPressed();
}

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
    state_.activity = Activity::moving;
    render();
    move_ = std::make_shared<MoveControl>();
    backgroundQueue_->submit(QualityOfService::userInitiated, [weak = weak_from_this(), queue = mainQueue_,
                                                               services = services_.move, candidates, control = move_] {
        if (weak.expired())
            return;
        queue->post([weak, outcome = moveCandidates(services, candidates, *control)] {
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
    if (!outcome.moved.empty()) {
        state_.report.guide.erase("trash"); // it holds more than was measured
        if (guideIsWanted_)
            measureGuide(); // the Trash may have been measured before
    }
    state_.activity = Activity::idle;
    state_.summary = movedText(outcome.moved.size(), outcome.failureLines.size(), outcome.recordWritten);
    updateSelectionSummary();
    render();
    if (outcome.misplaced.empty())
        return;
    if (!shell_.cleanupWindowIsShown())
        shell_.showCleanupWindow(); // the user must learn where the file is
    ask(misplacedAlert(outcome.misplaced), {});
}

// The item left its place.
void CleanupWindowController::forget(const CleanupCandidate& gone) {
    state_.selected.erase(gone.url.native());
    std::erase_if(state_.report.candidates, [&](const auto& found) { return found.uiID == gone.uiID; });
}

void CleanupWindowController::applicationWillTerminate() {
    stopMeasuringGuide();
    if (move_)
        move_->stop(std::chrono::milliseconds(0)); // it moves no further file while the scan ends
    services_.stopScanning();
    if (move_)
        move_->stop(services_.longestEnding);
}

void CleanupWindowController::ask(const AlertContent& alert,
                                  std::function<void(CleanupWindowController&, AlertAnswer)> answered) {
    state_.activity = Activity::asking;
    render();
    shell_.ask(alert, [weak = weak_from_this(), answered = std::move(answered)](AlertAnswer answer) {
        const auto self = weak.lock();
        if (!self)
            return;
        self->state_.activity = Activity::idle;
        if (answered)
            answered(*self, answer);
        self->render();
    });
}

// ---- what is shown

// The guide shows no selection, so the last total stays.
void CleanupWindowController::updateSelectionSummary() {
    if (state_.mode == CleanupWindowMode::filesFound)
        state_.selectedTotal = selectedTotal(state_.report.candidates, state_.selected);
}

void CleanupWindowController::render() {
    content_ = cleanupWindowContent(state_, services_.system);
    shell_.renderCleanupWindow(content_);
}

// ---- questions and places

const CleanupCandidate* CleanupWindowController::candidate(std::string_view forUIIdentifier) const {
    const auto found = std::ranges::find_if(
        state_.report.candidates, [&](const auto& candidate) { return isControlOf(candidate, forUIIdentifier); });
    return found == state_.report.candidates.end() ? nullptr : &*found;
}

bool CleanupWindowController::isSelected(const CleanupCandidate& candidate) const {
    return state_.selected.contains(candidate.url.native());
}

CleanupWindowController::Candidates CleanupWindowController::selectedCandidates() const {
    Candidates selected;
    std::ranges::copy_if(state_.report.candidates, std::back_inserter(selected),
                         [&](const auto& candidate) { return isSelected(candidate); });
    return selected;
}

void CleanupWindowController::findOutWhatCanBeOpened() {
    for (const auto& row : allCleanupAvenueActions) {
        const auto target = avenueTarget(row.value, services_.home, services_.downloads, services_.applications);
        state_.canOpen[row.value] = target.kind == AvenueTarget::Kind::settingsPane
                                        ? workspace_->canOpenURL(target.url)
                                        : workspace_->canOpenItem(target.path);
    }
}

void CleanupWindowController::openFolder(const std::filesystem::path& path) { workspace_->openItem(path); }
void CleanupWindowController::openApplication(const std::filesystem::path& path) { workspace_->openItem(path); }
void CleanupWindowController::openSystemSettings(const std::string& paneURL) { workspace_->openSettingsPane(paneURL); }

} // namespace vantry
