#pragma once

#include "app/SingleInstance.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// What a start of the process is for.
enum class LaunchMode { userInterface, help, version, status, statusJson, report, reportJson };

/// The first argument that names a mode decides; anything unknown is ignored and means the user interface.
[[nodiscard]] LaunchMode launchMode(std::span<const std::string> arguments);

/// The values of every "--running ID", in their order; one without a value counts for nothing.
[[nodiscard]] std::vector<std::string> runningBundleIdentifiers(std::span<const std::string> arguments);

/// What a start that finds Ombrel running asks of it. Absent for a start by a session manager that restores a session
/// ("-session"): nobody has asked for a popover.
[[nodiscard]] std::optional<InstanceRequest> requestOfSecondStart(std::span<const std::string> arguments);

[[nodiscard]] std::string helpText();
[[nodiscard]] std::string versionText();

/// The process entry's steps, in the order in which `runEntry` takes them.
struct EntrySteps {
    std::function<bool(std::span<const std::string>)> runFilesystemWorkerIfRequested;
    /// Absent when the mode is not the terminal's.
    std::function<std::optional<int>(LaunchMode, std::span<const std::string>)> runInTerminal;
    std::function<int(std::vector<std::string>)> runUserInterface;
};

/// The process entry: a worker's job before anything else, then the terminal's modes, then the interface. The result is
/// the exit status. `arguments` are the process's, without its name.
[[nodiscard]] int runEntry(const std::vector<std::string>& arguments, const EntrySteps& steps);

} // namespace vantry
