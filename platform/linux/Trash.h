#pragma once

#include "base/Result.h"
#include "platform/Trash.h"

#include <filesystem>

namespace vantry {

/// Where this user's home Trash is or would be: "Trash" in $XDG_DATA_HOME, or in .local/share of the user's
/// `homeFolder()` where that is unset, empty or relative. Fails when there is no home folder either.
[[nodiscard]] Result<std::filesystem::path> homeTrash();

/// As `moveToTrash(file, checked)`, to the Trash at the absolute path `trash`.
[[nodiscard]] TrashMove moveToTrash(const PinnedFile& file, const PinnedFileFacts& checked,
                                    const std::filesystem::path& trash);

} // namespace vantry
