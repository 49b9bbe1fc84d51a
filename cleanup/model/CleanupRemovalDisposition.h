#pragma once

#include <string_view>

namespace vantry {

/// What the cleanup window lets the user do with a finding.
enum class CleanupRemovalDisposition {
    directTrash,          ///< may be selected and moved to the Trash
    reviewOnly,           ///< can only be revealed in Finder
    protectedFromRemoval, ///< shown for information; neither selected nor revealed for removal
};

/// The text of its badge.
[[nodiscard]] std::string_view title(CleanupRemovalDisposition disposition);

} // namespace vantry
