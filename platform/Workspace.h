#pragma once

#include "base/Geometry.h"
#include "platform/MainQueue.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// A screen of the desktop. `frame` is in the desktop's logical coordinates.
struct Screen {
    std::string name;
    Rect frame;

    bool operator==(const Screen&) const = default;
};

/// What the desktop session around the application offers. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Calls `block` after every wake from sleep: the workspace's notification on macOS, logind's
    /// `PrepareForSleep(false)` on Linux. Where the system does not tell, `block` is never called.
    [[nodiscard]] virtual std::unique_ptr<Subscription> observeWake(std::function<void()> block) = 0;

    /// Opens `url` with what the user has chosen for it. A settings pane of macOS ("x-apple.systempreferences:...")
    /// opens its counterpart where the desktop has one. Does nothing, quietly, where nothing can open it. Never waits.
    virtual void openURL(const std::string& url) = 0;

    /// All screens, the one with the menu bar first; may be empty.
    [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
    /// The screen that holds the key window; absent when there is none.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() const = 0;
};

} // namespace vantry
