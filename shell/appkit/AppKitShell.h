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

/// The AppKit front end. Create it after the shared application.
class AppKitShell : public Shell {
public:
    AppKitShell();

    /// Gets all clicks and choices.
    void setDelegate(std::weak_ptr<AppDelegate> delegate);

    void becomeAccessory() override;
    [[nodiscard]] bool statusItemHasButton() const override { return statusItem_.button() != nil; }
    void showStatusItem(const StatusItemContent& content) override { statusItem_.setContent(content); }
    void renderPopover(const PopoverContent& content) override { popover_.render(content); }
    void openPopover() override;
    void closePopover() override { popover_.close(); }
    [[nodiscard]] bool popoverIsShown() const override { return popover_.isVisible(); }
    void popUpContextMenu(const ContextMenuContent& content) override;
    [[nodiscard]] CleanupWindowShell& cleanupWindowShell() override;
    void terminate() override;

private:
    /// Shared with callbacks that may outlive the front end.
    using Target = std::shared_ptr<std::weak_ptr<AppDelegate>>;

    KeyGuard keyGuard_;
    Target delegate_ = std::make_shared<std::weak_ptr<AppDelegate>>();
    OmbrelMenuTarget* menuTarget_;
    StatusItem statusItem_;
    PopoverWindow popover_;
    std::unique_ptr<CleanupWindow> cleanupWindow_; ///< created on first use
};

} // namespace vantry
