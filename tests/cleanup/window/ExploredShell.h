#pragma once

#include "app/AppDelegate.h"
#include "base/UniqueFd.h"
#include "tests/cleanup/window/MoveExplorer.h"
#include "tests/support/FakeShell.h"

#include <array>
#include <atomic>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vantry::MoveExplorer {

/// Notes when there is something new to compare, and passes everything on to a window if there is one.
class ExploredShell : public FakeShell {
public:
    using FakeShell::FakeShell;
    void showCleanupWindow() override {
        FakeShell::showCleanupWindow();
        if (window)
            window->shell().showCleanupWindow();
    }
    void renderCleanupWindow(const CleanupWindowContent& content) override {
        FakeShell::renderCleanupWindow(content);
        if (window)
            window->shell().renderCleanupWindow(content);
        hasNews = true;
    }
    void scrollCleanupResultsToTop() override {
        FakeShell::scrollCleanupResultsToTop();
        if (window)
            window->shell().scrollCleanupResultsToTop();
    }
    void ask(const AlertContent& content, std::function<void(AlertAnswer)> answered) override {
        FakeShell::ask(content, std::move(answered));
        if (window)
            window->shell().ask(content, [answers = answers](AlertAnswer given) { answers->push_back(given); });
    }

    /// Whether the shown window offers this to the user. Events of others are always offered.
    [[nodiscard]] bool offers(Event event) const {
        const bool isUsable = cleanupWindowShown && !alert;
        const auto pressable = [&](const CleanupButtonContent& button) {
            return isUsable && button.enabled && !button.hidden;
        };
        const bool hasRows =
            isUsable && !cleanupWindow->sections.empty() && cleanupWindow->modeControl == CleanupWindowMode::filesFound;
        switch (event) {
        case Event::tick: return hasRows && cleanupWindow->selectionEnabled;
        case Event::reveal: return hasRows;
        case Event::changeMode: return isUsable;
        case Event::escape: return cleanupWindowShown;
        case Event::selectAll: return pressable(cleanupWindow->selectSuggestedButton);
        case Event::rescan: return pressable(cleanupWindow->scanButton);
        case Event::trash: return pressable(cleanupWindow->trashButton);
        default: return true;
        }
    }

    std::unique_ptr<ExploredWindow> window;
    /// The answers given in the window's sheets. A sheet may answer after this shell is gone.
    std::shared_ptr<std::vector<AlertAnswer>> answers = std::make_shared<std::vector<AlertAnswer>>();
    bool hasNews = false;
};

/// The end of the application on a thread of its own, as it may wait for a block that runs on the explorer's thread.
class EndOnAThread {
public:
    /// Returns as soon as the end waits or is over.
    void begin(const std::shared_ptr<AppDelegate>& delegate) {
        thread_ = std::thread([this, delegate] {
            threadId_ = gettid();
            delegate->applicationWillTerminate();
            isOver_ = true;
        });
        while (!isOver_ && !isWaiting(threadId_))
            std::this_thread::yield();
    }
    [[nodiscard]] bool hasBegun() const { return thread_.joinable(); }
    [[nodiscard]] bool isOver() const { return isOver_; }
    void join() { thread_.join(); }

private:
    /// Whether the kernel says that a thread of this process sleeps; 0 is none.
    static bool isWaiting(pid_t thread) {
        const UniqueFd status(
            open(("/proc/self/task/" + std::to_string(thread) + "/stat").c_str(), O_RDONLY | O_CLOEXEC));
        std::array<char, 256> text{};
        return status && read(status.get(), text.data(), text.size() - 1) > 0 &&
               std::string_view(text.data()).find(") S ") != std::string_view::npos;
    }

    std::atomic<pid_t> threadId_ = 0;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

} // namespace vantry::MoveExplorer
