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

/// Whether two absolute paths name the same place, so that a coordinated file is where it was confirmed to be. What
/// lies there does not matter. On macOS, where the system may spell a path in another way than it was given: the same
/// name, however its characters are composed, in the same folder. Blocking; any thread.
[[nodiscard]] bool isSamePlace(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace vantry
