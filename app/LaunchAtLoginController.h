#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vantry {

/// "Launch at Login": a launch agent's property list in the user's launch-agents folder, and on Linux the desktop's
/// autostart entry with it. These files are the setting; nothing else is kept. What they say takes effect at the next
/// login. Blocking (small files); main thread.
namespace LaunchAtLoginController {

/// What the operations act on; the real one is `currentEnvironment()`.
struct Environment {
    std::filesystem::path home;
    std::filesystem::path runningApplication;
    /// The first of these that is an application is preferred to a running copy that is none of them.
    std::vector<std::filesystem::path> installedApplications;
};

[[nodiscard]] Result<Environment> currentEnvironment();

/// The application's bundle identifier.
inline constexpr const char* label = "app.ombrel.Ombrel";

[[nodiscard]] std::filesystem::path launchAgentURL(const Environment& environment);

/// Whether a file stands there (a folder or a dangling link is no file) and, on systems that need an autostart entry,
/// the desktop honours the one that stands beside it.
[[nodiscard]] bool isEnabled(const Environment& environment);

/// Writes the agent, or removes it, and on systems that need one the autostart entry with it: both or, when something
/// fails, neither; the error is the system's.
[[nodiscard]] Result<void> setEnabled(const Environment& environment, bool enabled);

/// When enabled, writes the files anew for where the application is. An autostart entry that starts the right copy
/// already is left alone with what the user added to it, as is one that starts an installed copy while this one is not
/// installed.
[[nodiscard]] Result<void> refreshIfEnabled(const Environment& environment);

} // namespace LaunchAtLoginController

} // namespace vantry
