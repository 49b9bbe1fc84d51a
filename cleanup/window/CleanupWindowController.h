#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupServices.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/CleanupWindowShell.h"
#include "cleanup/window/MoveToTrash.h"
#include "cleanup/window/SelectionSummary.h"
#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Workspace.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// The controller of the "Free Up Space" window: it scans in the background, shows what was found, and moves low-risk
/// files that the user chose to the Trash. One thing at a time: while a scan, a check or a move is under way, or a
/// sheet asks, neither a scan nor a move starts and the selection does not change. Main thread. To be owned by a
/// `std::shared_ptr`: whatever is posted or asked holds it weakly.
class CleanupWindowController : public std::enable_shared_from_this<CleanupWindowController> {
public:
    /// `shell` outlives the controller.
    CleanupWindowController(CleanupWindowShell& shell, std::shared_ptr<MainQueue> mainQueue,
                            std::shared_ptr<BackgroundQueue> backgroundQueue, std::shared_ptr<Workspace> workspace,
                            CleanupServices services);

    /// Only shows the window while a scan or a move is under way, or a sheet asks.
    void showAndScan();
    /// Does nothing while a scan or a move is under way, or a sheet asks.
    void scan();

    // What the controls do.
    void scanPressed();
    void modeChanged(CleanupWindowMode mode);
    void selectSuggestedPressed();
    void candidateSelectionChanged(std::string_view identifier, bool isOn);
    void revealPressed(std::string_view identifier);
    void avenueActionPressed(CleanupAvenue::Action action);
    void trashPressed();

    /// Escape was pressed in the window: a check of the selected files that is under way is given up, and nothing
    /// moves.
    void cancelPressed();
    /// The user has closed the window: as `cancelPressed`.
    void windowClosed();
    /// The process is about to end. A scan that is under way ends with its worker processes. A move stops after the
    /// file in hand and writes its record; this waits for that, at most `CleanupServices::longestEnding`.
    void applicationWillTerminate();

    /// The candidate whose controls carry `identifier`; null when there is none.
    [[nodiscard]] const CleanupCandidate* candidate(std::string_view forUIIdentifier) const;
    [[nodiscard]] const CleanupWindowContent& content() const { return content_; }

private:
    /// What is under way. `checking` is the validation before a sheet or a move, `asking` a sheet.
    enum class Activity { idle, scanning, checking, asking, moving };

    using Candidates = std::vector<CleanupCandidate>;
    using Check = void (CleanupWindowController::*)(const Candidates& selected,
                                                    const std::vector<std::string>& failureLines);

    void finishScan(CleanupScanReport report);

    // A move takes these steps; each but the last may be the end of it.
    void validate(Candidates selected, Check checked);
    void finishCheck(const Candidates& selected, const std::vector<std::string>& failureLines, Check checked);
    void confirm(const Candidates& selected, const std::vector<std::string>& failureLines);
    void moveToTrash(Candidates candidates);
    void startMove(const Candidates& candidates, const std::vector<std::string>& failureLines);
    void finishMove(const MoveOutcome& outcome);
    void forget(const CleanupCandidate& gone);

    void ask(const AlertContent& alert, std::function<void(CleanupWindowController&, AlertAnswer)> answered);
    void begin(Activity activity);
    void endActivity();

    void updateModeControls();
    void updateSummaryCards();
    void updateSelectionSummary();
    void renderResults();
    void render();

    [[nodiscard]] std::string statusText() const;
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
    Activity activity_ = Activity::idle;
    int checkNumber_ = 0;               ///< of the last check that was started or given up
    std::shared_ptr<MoveControl> move_; ///< of the last move that was started
    CleanupScanReport report_;          ///< of the last scan that ended, without what was moved since
    SelectedPaths selectedPaths_;
    std::string scanSummary_ = CleanupWindowContent{}.statusLabel;
    std::map<CleanupAvenue::Action, bool> canOpen_; ///< found out when a scan ends, and before the first one
    CleanupWindowContent content_;
};

} // namespace vantry
