#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <functional>

namespace vantry {

/// What the "Free Up Space" window needs of a front end. The window keeps its contents while it is closed. Main thread.
class CleanupWindowShell {
public:
    virtual ~CleanupWindowShell() = default;

    /// Shows the window, centred unless it is visible already, in front of all others and with the keyboard.
    virtual void showCleanupWindow() = 0;
    /// False once the user has closed it.
    [[nodiscard]] virtual bool cleanupWindowIsShown() const = 0;
    /// Draws `content`, also while the window is closed. What equals the last content costs nothing.
    virtual void renderCleanupWindow(const CleanupWindowContent& content) = 0;
    virtual void scrollCleanupResultsToTop() = 0;

    /// Shows a sheet on the window. `answered` is called once, in a later turn of the event loop; with the last
    /// button when the sheet or its window is closed. One sheet at a time.
    virtual void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) = 0;
};

} // namespace vantry
