#pragma once

#include "app/SingleInstance.h"

#include <memory>
#include <string>
#include <vector>

namespace vantry {

/// How a front end is started.
struct ShellLaunch {
    std::vector<std::string> arguments;       ///< of the process, without its name
    std::unique_ptr<SingleInstance> instance; ///< null where it could not be told whether another one runs
};

/// The status of a process that was to show an interface and reaches no display (EX_UNAVAILABLE of sysexits.h).
inline constexpr int noDisplayStatus = 69;

/// Runs the user interface until it ends; the result is the process's exit status.
using ShellEntry = int(ShellLaunch);

/// The name under which a front end offers its `ShellEntry`.
inline constexpr const char* shellEntryName = "ombrelShellEntry";

} // namespace vantry
