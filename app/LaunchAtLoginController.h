#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vantry {

/// "Launch at Login": a launch agent's property list in the user's launch-agents folder and, on Linux, a desktop
/// autostart entry. These files are the setting; there is no other store. They take effect at the next login. Blocking
/// (small files); main thread.
namespace LaunchAtLoginController {

/// What the operations act on. `currentEnvironment()` is the real one.
struct Environment {
    std::filesystem::path home;
    std::filesystem::path runningApplication;
    /// The first of these that is an application is started, unless the running copy is one of them.
    std::vector<std::filesystem::path> installedApplications;
};

[[nodiscard]] Result<Environment> currentEnvironment();

/// The application's bundle identifier.
inline constexpr const char* label = "app.ombrel.Ombrel";

[[nodiscard]] std::filesystem::path launchAgentURL(const Environment& environment);

/// Whether the agent file exists (a folder or a dangling link does not count) and, on systems that need an autostart
/// entry, the desktop honours that entry.
[[nodiscard]] bool isEnabled(const Environment& environment);

/// Writes or removes the agent file and, on systems that need one, the autostart entry. If one of them fails, neither
/// changes, and the error is the system's.
[[nodiscard]] Result<void> setEnabled(const Environment& environment, bool enabled);

/// If enabled, rewrites the files for the application's current place. An autostart entry that already starts the right
/// copy is kept with the user's changes, and so is one that starts an installed copy while this one is not installed.
[[nodiscard]] Result<void> refreshIfEnabled(const Environment& environment);

} // namespace LaunchAtLoginController

} // namespace vantry
