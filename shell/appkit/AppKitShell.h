#pragma once

#include "app/AppDelegate.h"
#include "app/Shell.h"
#include "shell/appkit/CleanupWindow.h"
#include "shell/appkit/ContextMenuRenderer.h"
#include "shell/appkit/KeyGuard.h"
#include "shell/appkit/PopoverWindow.h"
#include "shell/appkit/StatusItem.h"

#include <functional>
#include <memory>

namespace vantry {

/// The front end on AppKit: the item in the menu bar with the popover and the menu, and the cleanup window. To be made
/// when the shared application exists.
class AppKitShell : public Shell {
public:
    AppKitShell();
    ~AppKitShell() override;

    /// Whom clicks and choices go to.
    void setDelegate(std::weak_ptr<AppDelegate> delegate);

    void becomeAccessory() override;
    [[nodiscard]] bool statusItemHasButton() const override;
    void showStatusItem(const StatusItemContent& content) override;
    void renderPopover(const PopoverContent& content) override;
    void openPopover() override;
    void closePopover() override;
    [[nodiscard]] bool popoverIsShown() const override;
    void popUpContextMenu(const ContextMenuContent& content) override;
    void showCleanupWindow() override;
    [[nodiscard]] bool cleanupWindowIsShown() const override;
    void renderCleanupWindow(const CleanupWindowContent& content) override;
    void scrollCleanupResultsToTop() override;
    void ask(const AlertContent& alert, std::function<void(AlertAnswer)> answered) override;
    void terminate() override;

private:
    /// What the parts of the front end report through; it goes with the front end.
    using Target = std::shared_ptr<std::weak_ptr<AppDelegate>>;

    [[nodiscard]] CleanupWindow& cleanupWindow();

    KeyGuard keyGuard_;
    Target delegate_ = std::make_shared<std::weak_ptr<AppDelegate>>();
    OmbrelMenuTarget* menuTarget_;
    StatusItem statusItem_;
    PopoverWindow popover_;
    std::unique_ptr<CleanupWindow> cleanupWindow_; ///< null before it is first needed
};

} // namespace vantry
