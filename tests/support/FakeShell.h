#pragma once

#include "app/Shell.h"
#include "tests/support/FakeCallLog.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace vantry {

/// A front end that keeps everything it is given to show. The popover opens and closes when asked to.
class FakeShell : public Shell, public CleanupWindowShell {
public:
    explicit FakeShell(std::shared_ptr<FakeCallLog> log) : log_(std::move(log)) {}

    void becomeAccessory() override { log_->add("shell.becomeAccessory"); }

    [[nodiscard]] bool statusItemHasButton() const override { return hasButton; }
    void showStatusItem(const StatusItemContent& content) override {
        log_->add("shell.showStatusItem");
        statusItems.push_back(content);
    }

    void renderPopover(const PopoverContent& content) override {
        log_->add("shell.renderPopover");
        popovers.push_back(content);
    }
    void openPopover() override {
        log_->add("shell.openPopover");
        popoverShown = true;
    }
    void closePopover() override {
        log_->add("shell.closePopover");
        popoverShown = false;
    }
    [[nodiscard]] bool popoverIsShown() const override { return popoverShown; }

    void popUpContextMenu(const ContextMenuContent& content) override {
        log_->add("shell.popUpContextMenu");
        menu = content;
    }

    [[nodiscard]] CleanupWindowShell& cleanupWindowShell() override { return *this; }
    void showCleanupWindow() override {
        log_->add("shell.showCleanupWindow");
        cleanupWindowShown = true;
    }
    [[nodiscard]] bool cleanupWindowIsShown() const override { return cleanupWindowShown; }
    void renderCleanupWindow(const CleanupWindowContent& content) override {
        log_->add("shell.renderCleanupWindow");
        cleanupWindow = content;
        renderings.push_back(content);
    }
    void scrollCleanupResultsToTop() override { log_->add("shell.scrollCleanupResultsToTop"); }
    void ask(const AlertContent& content, std::function<void(AlertAnswer)> answered) override {
        log_->add("shell.ask " + content.message);
        alert = content;
        answer = std::move(answered);
    }

    void terminate() override { log_->add("shell.terminate"); }

    /// What is on the screen; a test asks after the first rendering only.
    [[nodiscard]] const StatusItemContent& statusItem() const { return statusItems.back(); }
    [[nodiscard]] const PopoverContent& popover() const { return popovers.back(); }

    bool hasButton = true;
    bool popoverShown = false;
    std::vector<StatusItemContent> statusItems; ///< every rendering, the last one is shown
    std::vector<PopoverContent> popovers;       ///< the same
    std::optional<ContextMenuContent> menu;     ///< popped up last
    bool cleanupWindowShown = false;
    std::optional<CleanupWindowContent> cleanupWindow;
    std::vector<CleanupWindowContent> renderings; ///< of the cleanup window, in their order
    std::optional<AlertContent> alert;            ///< asked last
    std::function<void(AlertAnswer)> answer;

private:
    std::shared_ptr<FakeCallLog> log_;
};

} // namespace vantry
