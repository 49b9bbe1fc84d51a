#pragma once

#include "cleanup/window/CleanupWindowController.h"
#include "tests/support/Candidates.h"
#include "tests/support/FakeBackgroundQueue.h"
#include "tests/support/FakeCleanupServices.h"
#include "tests/support/FakeMainQueue.h"
#include "tests/support/FakeShell.h"
#include "tests/support/FakeWorkspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace vantry {

/// The window's controller with queues that only run when the test says so. A test arranges `disk`, `workspace` and
/// `shell`.
class CleanupWindowFixture : public testing::Test {
protected:
    /// Opens the window and lets its scan end with `candidates`.
    void openWith(std::vector<CleanupCandidate> candidates) {
        disk.report = reportOf(std::move(candidates));
        controller->showAndScan();
        settle();
        log.clear();
    }
    /// Ticks or unticks the candidate at `path`.
    void tick(const std::filesystem::path& path, bool isOn = true) {
        controller->candidateSelectionChanged(identifierOf(path), isOn);
    }
    /// Ticks the paths, presses the button and lets the check end.
    void askToMove(const std::vector<std::filesystem::path>& paths) {
        for (const auto& path : paths)
            tick(path);
        controller->trashPressed();
        settle();
    }
    /// Does the same, confirms, and lets the move end.
    void move(const std::vector<std::filesystem::path>& paths) {
        askToMove(paths);
        answer(AlertAnswer::first);
        settle();
    }
    /// Presses a button of the sheet.
    void answer(AlertAnswer button) {
        const auto answered = std::exchange(shell.answer, nullptr);
        ASSERT_TRUE(answered) << "no sheet asks";
        shell.alert.reset();
        answered(button);
    }
    /// Runs both queues until nothing waits in either.
    void settle() const {
        while (backgroundQueue->runNext() || mainQueue->runNext()) {
        }
    }

    [[nodiscard]] std::string identifierOf(const std::filesystem::path& path) const {
        for (const auto& candidate : disk.report.candidates)
            if (candidate.url == path)
                return "candidate-" + candidate.uiID;
        return "candidate-none";
    }
    /// The paths that the only record was last written for.
    [[nodiscard]] std::vector<std::string> recorded() const {
        std::vector<std::string> paths;
        for (const auto& candidate : disk.recorded())
            paths.push_back(candidate.url.native());
        return paths;
    }
    [[nodiscard]] const CleanupWindowContent& shown() const { return shell.cleanupWindow.value(); }
    /// The titles of the rows, all sections in one.
    [[nodiscard]] std::vector<std::string> rows() const {
        std::vector<std::string> titles;
        for (const auto& section : shown().sections)
            for (const auto& row : section.candidates)
                titles.push_back(row.title + (row.selected ? " selected" : ""));
        return titles;
    }
    /// Which of the buttons that start something can be pressed.
    [[nodiscard]] std::string enabledButtons() const {
        return std::string(shown().scanButton.enabled ? "scan " : "") +
               (shown().selectSuggestedButton.enabled ? "select " : "") +
               (shown().trashButton.enabled ? "trash " : "") + (shown().progressIndicator ? "busy" : "");
    }

    std::shared_ptr<FakeCallLog> calls = std::make_shared<FakeCallLog>();
    FakeCallLog& log = *calls;
    std::shared_ptr<FakeMainQueue> mainQueue = std::make_shared<FakeMainQueue>(calls);
    std::shared_ptr<FakeBackgroundQueue> backgroundQueue = std::make_shared<FakeBackgroundQueue>(calls);
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>(calls);
    FakeCleanupServices disk{calls};
    FakeShell shell{calls};
    std::shared_ptr<CleanupWindowController> controller =
        std::make_shared<CleanupWindowController>(shell, mainQueue, backgroundQueue, workspace, disk.services());
};

/// The same with three logs and a file that may not be moved.
class CleanupMove : public CleanupWindowFixture {
protected:
    void openWithThreeLogs() {
        openWith({logAt("/l/a", 1'000'000), logAt("/l/b", 2'000'000), logAt("/l/c", 4'000'000),
                  candidateAt("/c/cache", CleanupCategory::cache)});
        summary = shown().statusLabel;
    }
    /// Confirms the move of one file, which then waits in the background queue.
    void beginToMove(const char* path) {
        askToMove({path});
        answer(AlertAnswer::first);
        backgroundQueue->runNext();
        mainQueue->runNext();
    }
    std::string summary;
};

inline const std::string measuringStatus = "Measuring storage and checking only approved low-risk locations…";
inline const std::string checkingStatus =
    "Checking cleanup avenues locally without reading personal document contents…";
inline const std::string checkingFilesStatus = "Checking that the selected items have not changed…";
inline const std::string guideStatus =
    "37 storage areas covered · “Used here” is everything measured in that area. “Shown” is only the smaller set of "
    "files worth checking.";
inline const std::string guideSelection =
    "Nothing is removed automatically. Managed and private storage never gets a cleanup checkbox.";
inline const std::string nothingSelected = "Nothing selected · Only low-risk files can be selected";

} // namespace vantry
