#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace vantry {

/// The paths in the output of `lsof -Fn`: the lines that begin with "n", without the "n". The bytes are not decoded.
[[nodiscard]] std::vector<std::filesystem::path> pathsInLsofOutput(std::string_view output);

} // namespace vantry
