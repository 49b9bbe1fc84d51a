#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>

namespace vantry {

/// "Launch at Login": a launch agent's property list in the user's launch-agents folder. Its existence is the setting;
/// nothing is kept. What it says takes effect at the next login. Blocking (small files); main thread.
namespace LaunchAtLoginController {

/// What the operations act on; the real one is `currentEnvironment()`.
struct Environment {
    std::filesystem::path home;
    std::filesystem::path runningApplication;
    /// Preferred to the running copy when a bundle exists there.
    std::filesystem::path installedApplication = "/Applications/Ombrel.app";
};

[[nodiscard]] Result<Environment> currentEnvironment();

/// The application's bundle identifier.
inline constexpr const char* label = "app.ombrel.Ombrel";

[[nodiscard]] std::filesystem::path launchAgentURL(const Environment& environment);

/// Whether a file stands there. A folder in its place is none, nor is a link that leads nowhere.
[[nodiscard]] bool isEnabled(const Environment& environment);

/// Writes the agent, or removes it, and on systems that need one the autostart entry with it: both or, when something
/// fails, neither; the error is the system's.
[[nodiscard]] Result<void> setEnabled(const Environment& environment, bool enabled);

/// Writes an existing agent anew for where the application is.
[[nodiscard]] Result<void> refreshIfEnabled(const Environment& environment);

} // namespace LaunchAtLoginController

} // namespace vantry
