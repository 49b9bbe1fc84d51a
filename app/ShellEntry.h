#pragma once

#include "app/SingleInstance.h"

#include <memory>
#include <string>
#include <vector>

namespace vantry {

/// How a front end is started.
struct ShellLaunch {
    std::vector<std::string> arguments;       ///< of the process, without argv[0]
    std::unique_ptr<SingleInstance> instance; ///< null if it is unknown whether another instance runs
};

/// The exit status when no display can be reached (EX_UNAVAILABLE of sysexits.h).
inline constexpr int noDisplayStatus = 69;

/// Runs the user interface until it ends. Returns the process's exit status.
using ShellEntry = int(ShellLaunch);

/// The name under which a front end offers its `ShellEntry`.
inline constexpr const char* shellEntryName = "ombrelShellEntry";

} // namespace vantry
