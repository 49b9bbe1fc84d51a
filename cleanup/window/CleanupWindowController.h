#pragma once

#include "cleanup/move/MoveCandidates.h"
#include "cleanup/window/CleanupServices.h"
#include "cleanup/window/CleanupWindowShell.h"
#include "cleanup/window/CleanupWindowState.h"
#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Workspace.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// The controller of the "Free Up Space" window: scans in the background, shows the findings, and moves low-risk files
/// that the user chose to the Trash. Does one thing at a time: while a scan, a check or a move runs, or a sheet is
/// open, no scan or move starts and the selection is locked. Main thread. Own it by a `std::shared_ptr`: callbacks hold
/// it weakly.
class CleanupWindowController : public std::enable_shared_from_this<CleanupWindowController> {
public:
    /// `shell` outlives the controller.
    CleanupWindowController(CleanupWindowShell& shell, std::shared_ptr<MainQueue> mainQueue,
                            std::shared_ptr<BackgroundQueue> backgroundQueue, std::shared_ptr<Workspace> workspace,
                            CleanupServices services);

    /// Scans unless a scan, a check or a move runs or a sheet is open; shows the window in any case.
    void showAndScan();
    /// Does nothing while a scan, a check or a move runs or a sheet is open.
    void scan();

    // The actions of the controls.
    void scanPressed();
    void modeChanged(CleanupWindowMode mode);
    void selectSuggestedPressed();
    void candidateSelectionChanged(std::string_view identifier, bool isOn);
    void revealPressed(std::string_view identifier);
    void avenueActionPressed(const AvenueButtonAction& action);
    void trashPressed();

    /// Escape was pressed in the window: gives up a running check of the selected files, so that nothing moves.
    void cancelPressed();
    /// The user closed the window: same as `cancelPressed`; the guide is not measured further.
    void windowClosed();
    /// The process is about to exit. Ends a running scan with its workers. Lets a move finish its current file and
    /// write its record, waiting at most `CleanupServices::longestEnding`.
    void applicationWillTerminate();

    /// The candidate whose controls have this identifier; null if there is none.
    [[nodiscard]] const CleanupCandidate* candidate(std::string_view forUIIdentifier) const;
    [[nodiscard]] const CleanupWindowContent& content() const { return content_; }

private:
    using Activity = CleanupWindowState::Activity;
    using Candidates = std::vector<CleanupCandidate>;
    using Check = void (CleanupWindowController::*)(const Candidates& selected,
                                                    const std::vector<std::string>& failureLines);

    void finishScan(CleanupScanReport report);
    void measureGuide();
    void stopMeasuringGuide();

    // The steps of a move; any of them may end it.
    void validate(Candidates selected, Check checked);
    void finishCheck(const Candidates& selected, const std::vector<std::string>& failureLines, Check checked);
    void confirm(const Candidates& selected, const std::vector<std::string>& failureLines);
    void moveToTrash(Candidates candidates);
    void startMove(const Candidates& candidates, const std::vector<std::string>& failureLines);
    void finishMove(const MoveOutcome& outcome);
    void forget(const CleanupCandidate& gone);

    void ask(const AlertContent& alert, std::function<void(CleanupWindowController&, AlertAnswer)> answered);
    void updateSelectionSummary();
    void render();

    [[nodiscard]] Candidates selectedCandidates() const;
    [[nodiscard]] bool isSelected(const CleanupCandidate& candidate) const;
    void findOutWhatCanBeOpened();
    void openFolder(const std::filesystem::path& path);
    void openApplication(const std::filesystem::path& path);
    void openSystemSettings(const std::string& paneURL);

    CleanupWindowShell& shell_;
    std::shared_ptr<MainQueue> mainQueue_;
    std::shared_ptr<BackgroundQueue> backgroundQueue_;
    std::shared_ptr<Workspace> workspace_;
    CleanupServices services_;
    CleanupWindowState state_;
    std::shared_ptr<std::atomic<bool>> guideIsWanted_; ///< of the last measurement; null once it is shown or given up
    int checkNumber_ = 0;                              ///< number of the last check that was started or given up
    std::shared_ptr<MoveControl> move_;                ///< of the last move that was started
    CleanupWindowContent content_;                     ///< as last rendered
};

} // namespace vantry
