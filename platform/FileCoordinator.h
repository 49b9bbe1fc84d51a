#pragma once

#include "base/Result.h"

#include <filesystem>
#include <functional>

namespace vantry {

/// Asks the processes that work with `file` to leave it alone while `accessor` moves it, and gives `accessor` the path
/// at which the file is then; called at most once and before this returns. Where the system has no such agreement
/// (Linux) the path is `file`. Fails when `accessor` was not called. Blocking, for as long as those processes take; any
/// thread but the main one.
[[nodiscard]] Result<void> coordinateMoving(const std::filesystem::path& file,
                                            const std::function<void(const std::filesystem::path&)>& accessor);

} // namespace vantry
