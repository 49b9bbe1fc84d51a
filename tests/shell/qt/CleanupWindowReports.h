#pragma once

#include "app/CleanupWindowActions.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace vantry {

/// Records what the controls of a window without a controller report.
struct CleanupWindowReports {
    std::vector<std::string> reports;
    std::function<void()> onSelection;
    std::function<void()> onClosed;

    /// They refer to this.
    [[nodiscard]] CleanupWindowActions actions() {
        return {[this] { reports.emplace_back("scan"); },
                [this](CleanupWindowMode mode) {
                    reports.emplace_back(mode == CleanupWindowMode::filesFound ? "files" : "guide");
                },
                [this] { reports.emplace_back("suggested"); },
                [this] { reports.emplace_back("trash"); },
                [this] { reports.emplace_back("cancel"); },
                [this] {
                    reports.emplace_back("closed");
                    if (onClosed)
                        onClosed();
                },
                {[this](const std::string& identifier, bool isOn) {
                     reports.push_back(identifier + (isOn ? " on" : " off"));
                     if (onSelection)
                         onSelection();
                 },
                 [this](const std::string& identifier) { reports.push_back("reveal " + identifier); },
                 [this](const AvenueButtonAction& action) {
                     const auto* copy = std::get_if<CopyCommand>(&action);
                     reports.push_back(copy ? "copy " + copy->command
                                            : "open " + std::string(rawValue(std::get<CleanupAvenue::Action>(action))));
                 }}};
    }
};

} // namespace vantry
