#pragma once

#include "base/Result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// The running application, as something that can be started again: the bundle on macOS, elsewhere the executable, also
/// when it was replaced or removed since. Any thread.
[[nodiscard]] Result<std::filesystem::path> runningApplicationPath();

/// Where an installed copy of the application stands, the preferred place first; there need not be one. Any thread.
[[nodiscard]] std::vector<std::filesystem::path> installedApplicationPaths();

/// Whether an application stands at `path`: a bundle on macOS, elsewhere an executable file. Blocking; any thread.
[[nodiscard]] bool isApplication(const std::filesystem::path& path);

/// Where a file has to stand beside the launch agent for the application to start at login: on Linux, where nothing
/// reads launch agents, the desktop's autostart entry called `label` (Desktop Application Autostart Specification);
/// absent on macOS, where launchd reads the agent itself. Any thread.
[[nodiscard]] std::optional<std::filesystem::path> autostartFile(const std::string& label);

/// What that file has to hold to start `application`. Fails for a path that a desktop entry cannot hold. Any thread.
[[nodiscard]] Result<std::string> autostartEntry(const std::string& label, const std::filesystem::path& application);

/// Whether the desktop starts what `entry` names at login: it is not hidden, not switched off, meant for the desktop
/// that runs, and its "TryExec" can be run. Blocking; any thread.
[[nodiscard]] bool autostartEntryIsHonoured(std::string_view entry);

/// Whether `entry` starts exactly `application`, without arguments. Any thread.
[[nodiscard]] bool autostartEntryStarts(std::string_view entry, const std::filesystem::path& application);

} // namespace vantry
