#pragma once

#include "platform/Workspace.h"
#include "tests/support/FakeSubscription.h"

#include <set>
#include <utility>

namespace vantry {

/// A desktop with the screens that the test gives it, which sleeps and wakes when the test says so.
class FakeWorkspace : public Workspace {
public:
    explicit FakeWorkspace(std::shared_ptr<FakeCallLog> log) : log_(std::move(log)) {}

    std::unique_ptr<Subscription> observeWake(std::function<void()> block) override {
        log_->add("workspace.observeWake");
        observer_ = std::make_shared<FakeRegistration>(std::move(block));
        return std::make_unique<FakeSubscription>(observer_, log_, "workspace.stopObservingWake");
    }
    void openURL(const std::string& url) override { log_->add("workspace.openURL " + url); }
    [[nodiscard]] bool canOpenURL(const std::string& url) const override { return canOpen(url); }
    void openSettingsPane(const std::string& url) override { log_->add("workspace.openSettingsPane " + url); }
    void openItem(const std::filesystem::path& path) override { log_->add("workspace.openItem " + path.native()); }
    [[nodiscard]] bool canOpenItem(const std::filesystem::path& path) const override { return canOpen(path.native()); }
    void revealItem(const std::filesystem::path& path) override { log_->add("workspace.revealItem " + path.native()); }
    void copyText(const std::string& text) override { log_->add("workspace.copyText " + text); }
    [[nodiscard]] std::vector<std::string> runningBundleIdentifiers() const override {
        log_->add("workspace.runningBundleIdentifiers");
        return runningIdentifiers;
    }

    [[nodiscard]] std::vector<Screen> screens() const override { return screenList; }
    [[nodiscard]] std::optional<Screen> mainScreen() const override { return keyWindowScreen; }

    void wake() {
        if (const auto observer = observer_; observer && observer->active)
            observer->block();
    }

    /// The observer's block, as a notification holds it that is on its way when the observer is removed.
    [[nodiscard]] std::function<void()> wakeBlock() const { return observer_->block; }

    std::vector<Screen> screenList;
    std::optional<Screen> keyWindowScreen;
    std::set<std::string> closed; ///< the URLs and paths that cannot be opened
    std::vector<std::string> runningIdentifiers;
    mutable std::vector<std::string> askedAbout; ///< URLs and paths, whether they can be opened

private:
    bool canOpen(const std::string& what) const {
        askedAbout.push_back(what);
        return !closed.contains(what);
    }

    std::shared_ptr<FakeCallLog> log_;
    std::shared_ptr<FakeRegistration> observer_;
};

} // namespace vantry
