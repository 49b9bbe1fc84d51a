#pragma once

#include "base/Result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// The path by which the running application can be started again: the bundle on macOS, elsewhere the executable, even
/// if it was replaced or removed. Any thread.
[[nodiscard]] Result<std::filesystem::path> runningApplicationPath();

/// Where an installed copy of the application would be, the preferred place first. Any thread.
[[nodiscard]] std::vector<std::filesystem::path> installedApplicationPaths();

/// Whether an application is at `path`: a bundle on macOS, elsewhere an executable file. Blocking; any thread.
[[nodiscard]] bool isApplication(const std::filesystem::path& path);

/// The file that is needed in addition to the launch agent to start the application at login: on Linux, where nothing
/// reads launch agents, the autostart entry called `label` (Desktop Application Autostart Specification); absent on
/// macOS, where launchd reads the agent itself. Any thread.
[[nodiscard]] std::optional<std::filesystem::path> autostartFile(const std::string& label);

/// The contents of that file to start `application`. Fails for a path that a desktop entry cannot express. Any thread.
[[nodiscard]] Result<std::string> autostartEntry(const std::string& label, const std::filesystem::path& application);

/// Whether the desktop starts what `entry` names at login: it is not hidden or switched off, is meant for the running
/// desktop, and its "TryExec" exists. Blocking; any thread.
[[nodiscard]] bool autostartEntryIsHonoured(std::string_view entry);

/// Whether `entry` starts exactly `application`, without arguments. Any thread.
[[nodiscard]] bool autostartEntryStarts(std::string_view entry, const std::filesystem::path& application);

} // namespace vantry
