#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace vantry {

/// The paths in what `lsof -Fn` prints: the lines that begin with "n", without it. Paths are bytes as they stand there.
[[nodiscard]] std::vector<std::filesystem::path> pathsInLsofOutput(std::string_view output);

} // namespace vantry
