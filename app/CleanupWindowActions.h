#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <functional>
#include <memory>
#include <string>

namespace vantry {

class AppDelegate;

/// What the controls of the rows report.
struct CleanupRowActions {
    std::function<void(const std::string& identifier, bool isOn)> selectionChanged;
    std::function<void(const std::string& identifier)> revealed;
    std::function<void(const AvenueButtonAction&)> avenueAction;
};

/// What the "Free Up Space" window reports.
struct CleanupWindowActions {
    std::function<void()> scan;
    std::function<void(CleanupWindowMode)> modeChanged;
    std::function<void()> selectSuggested;
    std::function<void()> trash;
    std::function<void()> cancel; ///< Escape
    std::function<void()> closed; ///< the window was closed; minimizing does not count
    CleanupRowActions rows;
};

/// Actions that call the window's controller, or do nothing when it or `delegate` is gone.
[[nodiscard]] CleanupWindowActions cleanupWindowActions(std::weak_ptr<AppDelegate> delegate);

} // namespace vantry
