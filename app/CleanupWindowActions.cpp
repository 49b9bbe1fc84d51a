#include "app/CleanupWindowActions.h"

#include "app/AppDelegate.h"

namespace vantry {

CleanupWindowActions cleanupWindowActions(std::weak_ptr<AppDelegate> delegate) {
    const auto report = [&](auto action) {
        return [delegate, action](auto&&... arguments) {
            const auto target = delegate.lock();
            if (const auto controller = target ? target->cleanupWindowController() : nullptr)
                (controller.get()->*action)(arguments...);
        };
    };
    using Controller = CleanupWindowController;
    return {.scan = report(&Controller::scanPressed),
            .modeChanged = report(&Controller::modeChanged),
            .selectSuggested = report(&Controller::selectSuggestedPressed),
            .trash = report(&Controller::trashPressed),
            .cancel = report(&Controller::cancelPressed),
            .closed = report(&Controller::windowClosed),
            .rows = {.selectionChanged = report(&Controller::candidateSelectionChanged),
                     .revealed = report(&Controller::revealPressed),
                     .avenueAction = report(&Controller::avenueActionPressed)}};
}

} // namespace vantry
