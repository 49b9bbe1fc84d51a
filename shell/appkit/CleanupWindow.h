#pragma once

#include "app/CleanupWindowActions.h"
#include "cleanup/window/CleanupWindowShell.h"

#include <functional>

@class OmbrelCleanupWindowController;

namespace vantry {

/// The "Free Up Space" window. It shows a content and reports what the user does.
class CleanupWindow : public CleanupWindowShell {
public:
    explicit CleanupWindow(CleanupWindowActions actions);
    CleanupWindow(const CleanupWindow&) = delete;
    CleanupWindow& operator=(const CleanupWindow&) = delete;
    ~CleanupWindow() override;

    void showCleanupWindow() override;
    /// A window in the Dock counts as shown.
    [[nodiscard]] bool cleanupWindowIsShown() const override;
    void renderCleanupWindow(const CleanupWindowContent& content) override;
    void scrollCleanupResultsToTop() override;
    void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) override;

private:
    OmbrelCleanupWindowController* controller_;
};

} // namespace vantry
