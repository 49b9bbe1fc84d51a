#pragma once

#include "base/Geometry.h"
#include "platform/MainQueue.h"

#include <filesystem>
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
    /// `PrepareForSleep(false)` on Linux. If the system does not report it, `block` is never called.
    [[nodiscard]] virtual std::unique_ptr<Subscription> observeWake(std::function<void()> block) = 0;

    /// Opens `url` with the application that the user has chosen for it. A settings pane of macOS
    /// ("x-apple.systempreferences:...") opens its counterpart where the desktop has one. Does nothing if nothing can
    /// open it. Never waits.
    virtual void openURL(const std::string& url) = 0;
    /// Whether `openURL` would open something. Never waits.
    [[nodiscard]] virtual bool canOpenURL(const std::string& url) const = 0;

    /// Like `openURL` for a pane of the system's settings; if that fails, opens the settings themselves.
    virtual void openSettingsPane(const std::string& url) = 0;

    /// Opens a folder in the file manager, or starts an application bundle. Otherwise like `openURL`.
    virtual void openItem(const std::filesystem::path& path) = 0;
    /// Whether there is a folder or application that `openItem` would open. Never waits: true if that cannot be
    /// determined without waiting.
    [[nodiscard]] virtual bool canOpenItem(const std::filesystem::path& path) const = 0;

    /// Shows the file manager with the item selected, or else the folder that holds it. Never waits.
    virtual void revealItem(const std::filesystem::path& path) = 0;

    /// Puts `text` on the clipboard.
    virtual void copyText(const std::string& text) = 0;

    /// The bundle identifiers of the running applications that have one; empty except on macOS.
    [[nodiscard]] virtual std::vector<std::string> runningBundleIdentifiers() const = 0;

    /// All screens, the one with the menu bar first; may be empty.
    [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
    /// The screen that holds the key window; absent when there is none.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() const = 0;
};

} // namespace vantry
