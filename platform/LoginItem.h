#pragma once

#include "base/Result.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantry {

/// The running application, as something that can be started again: the bundle on macOS, elsewhere the executable, also
/// when it was replaced or removed since. Any thread.
[[nodiscard]] Result<std::filesystem::path> runningApplicationPath();

/// Where a file has to stand beside the launch agent for the application to start at login: on Linux, where nothing
/// reads launch agents, the desktop's autostart entry called `label` (Desktop Application Autostart Specification);
/// absent on macOS, where launchd reads the agent itself. Any thread.
[[nodiscard]] std::optional<std::filesystem::path> autostartFile(const std::string& label);

/// What that file has to hold to start `application`. Fails for a path that a desktop entry cannot hold. Any thread.
[[nodiscard]] Result<std::string> autostartEntry(const std::string& label, const std::filesystem::path& application);

} // namespace vantry
