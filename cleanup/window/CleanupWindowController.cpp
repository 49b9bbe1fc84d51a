#include "cleanup/window/CleanupWindowController.h"

#include <utility>

namespace vantry {

CleanupWindowController::CleanupWindowController(CleanupWindowShell& shell, std::shared_ptr<MainQueue> mainQueue,
                                                 std::shared_ptr<BackgroundQueue> backgroundQueue,
                                                 std::shared_ptr<Workspace> workspace, CleanupServices services)
    : shell_(shell),
      mainQueue_(std::move(mainQueue)),
      backgroundQueue_(std::move(backgroundQueue)),
      workspace_(std::move(workspace)),
      services_(std::move(services)) {}

void CleanupWindowController::showAndScan() {
    shell_.showCleanupWindow();
    scan();
}

void CleanupWindowController::scan() { shell_.renderCleanupWindow(content_); }
void CleanupWindowController::scanPressed() { scan(); }
void CleanupWindowController::modeChanged(CleanupWindowMode) {}
void CleanupWindowController::selectSuggestedPressed() {}
void CleanupWindowController::candidateSelectionChanged(std::string_view, bool) {}
void CleanupWindowController::revealPressed(std::string_view) {}
void CleanupWindowController::avenueActionPressed(CleanupAvenue::Action) {}
void CleanupWindowController::trashPressed() {}
const CleanupCandidate* CleanupWindowController::candidate(std::string_view) const { return nullptr; }

} // namespace vantry
