#pragma once

#include "base/Result.h"

#include <filesystem>
#include <functional>

namespace vantry {

/// Asks the processes that use `file` to leave it alone while `accessor` moves it. `accessor` gets the path at which
/// the file is by then; it is called at most once, before this returns. Linux has no file coordination, and the path is
/// `file`. Fails when `accessor` was not called. Blocking, for as long as those processes take; any thread but the main
/// one.
[[nodiscard]] Result<void> coordinateMoving(const std::filesystem::path& file,
                                            const std::function<void(const std::filesystem::path&)>& accessor);

/// Whether two absolute paths name the same place, so that a coordinated file is where it was confirmed to be, whatever
/// is there. macOS may return a path in another spelling, so there it means the same name, however its characters are
/// composed, in the same folder. Blocking; any thread.
[[nodiscard]] bool isSamePlace(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace vantry
