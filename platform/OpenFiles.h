#pragma once

#include <filesystem>
#include <vector>

namespace vantry {

/// The files that a process holds open, in the order in which the system lists them; on Linux from "/proc", on macOS
/// what "/usr/sbin/lsof" prints within 2 seconds. Empty if the system does not say. Blocking; any thread.
[[nodiscard]] std::vector<std::filesystem::path> openFilesOfProcess(int process);

} // namespace vantry
