#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/appkit/CleanupRowView.h"

#include <functional>

@class OmbrelCleanupWindowController;

namespace vantry {

/// What the controls of the window report.
struct CleanupWindowActions {
    std::function<void()> scan;
    std::function<void(CleanupWindowMode)> modeChanged;
    std::function<void()> selectSuggested;
    std::function<void()> trash;
    std::function<void()> cancel; ///< Escape
    std::function<void()> closed; ///< when the window closes
    CleanupRowActions rows;
};

/// The "Free Up Space" window. It shows a content and reports what the user does.
class CleanupWindow {
public:
    explicit CleanupWindow(CleanupWindowActions actions);
    CleanupWindow(const CleanupWindow&) = delete;
    CleanupWindow& operator=(const CleanupWindow&) = delete;
    ~CleanupWindow();

    void render(const CleanupWindowContent& content);
    /// Shows the window, centred on its screen unless it is visible, in front and with the keyboard.
    void showInFront();
    /// Also while it is in the Dock.
    [[nodiscard]] bool isVisible() const;
    void scrollResultsToTop();
    /// See `CleanupWindowShell::ask`.
    void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered);

private:
    OmbrelCleanupWindowController* controller_;
};

} // namespace vantry
