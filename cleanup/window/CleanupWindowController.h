#pragma once

#include "cleanup/model/CleanupScanReport.h"
#include "cleanup/window/CleanupServices.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/CleanupWindowShell.h"
#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Workspace.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// The controller of the "Free Up Space" window: it scans in the background, shows what was found, and moves low-risk
/// files that the user chose to the Trash. One thing at a time: while a scan or a move is under way, or a sheet asks,
/// neither a scan nor a move starts. Main thread. To be owned by a `std::shared_ptr`: whatever is posted or asked holds
/// it weakly.
class CleanupWindowController : public std::enable_shared_from_this<CleanupWindowController> {
public:
    /// `shell` outlives the controller.
    CleanupWindowController(CleanupWindowShell& shell, std::shared_ptr<MainQueue> mainQueue,
                            std::shared_ptr<BackgroundQueue> backgroundQueue, std::shared_ptr<Workspace> workspace,
                            CleanupServices services);

    void showAndScan();
    /// Does nothing while a scan or a move is under way.
    void scan();

    // What the controls do.
    void scanPressed();
    void modeChanged(CleanupWindowMode mode);
    void selectSuggestedPressed();
    void candidateSelectionChanged(std::string_view identifier, bool isOn);
    void revealPressed(std::string_view identifier);
    void avenueActionPressed(CleanupAvenue::Action action);
    void trashPressed();

    /// The candidate whose controls carry `identifier`; null when there is none.
    [[nodiscard]] const CleanupCandidate* candidate(std::string_view forUIIdentifier) const;
    [[nodiscard]] const CleanupWindowContent& content() const { return content_; }

private:
    CleanupWindowShell& shell_;
    std::shared_ptr<MainQueue> mainQueue_;
    std::shared_ptr<BackgroundQueue> backgroundQueue_;
    std::shared_ptr<Workspace> workspace_;
    CleanupServices services_;
    CleanupWindowContent content_;
};

} // namespace vantry
