#pragma once

#include "base/Deadline.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// What `program` writes to its standard output. Absent unless it ends with a status of 0 to `highestStatus` before
/// `deadline` and writes no more than `limit` bytes; otherwise it is ended, which takes a quarter of a second at most.
/// Blocking; any thread.
[[nodiscard]] std::optional<std::string> programOutput(const std::filesystem::path& program,
                                                       const std::vector<std::string>& arguments, std::size_t limit,
                                                       Deadline deadline, int highestStatus = 0);

} // namespace vantry
