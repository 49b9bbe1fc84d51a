#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <functional>

namespace vantry {

/// What the "Free Up Space" window needs of a front end. The window keeps its content while it is closed. Main thread.
class CleanupWindowShell {
public:
    virtual ~CleanupWindowShell() = default;

    /// Shows the window in front of all others with the keyboard focus, and centres it unless it is already visible.
    virtual void showCleanupWindow() = 0;
    /// False once the user has closed it.
    [[nodiscard]] virtual bool cleanupWindowIsShown() const = 0;
    /// Draws `content`, even while the window is closed. Redraws only what differs from the last content.
    virtual void renderCleanupWindow(const CleanupWindowContent& content) = 0;
    virtual void scrollCleanupResultsToTop() = 0;

    /// Shows a sheet on the window. Calls `answered` once, in a later turn of the event loop; with the last button if
    /// the sheet or its window is closed. One sheet at a time.
    virtual void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) = 0;
};

} // namespace vantry
