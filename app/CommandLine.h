#pragma once

#include "app/SingleInstance.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// What the process was started for.
enum class LaunchMode { userInterface, help, version, status, statusJson, report, reportJson };

/// Decided by the first argument that names a mode; without one, the user interface. Ignores unknown arguments.
[[nodiscard]] LaunchMode launchMode(std::span<const std::string> arguments);

/// The values of every "--running ID", in their order; ignores one without a value.
[[nodiscard]] std::vector<std::string> runningBundleIdentifiers(std::span<const std::string> arguments);

/// What a second start asks of the Ombrel that is already running. Absent if a session manager restores a session
/// ("-session"): then nobody asked for a popover.
[[nodiscard]] std::optional<InstanceRequest> requestOfSecondStart(std::span<const std::string> arguments);

[[nodiscard]] std::string helpText();
[[nodiscard]] std::string versionText();

} // namespace vantry
