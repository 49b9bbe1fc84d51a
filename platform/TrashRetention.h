#pragma once

#include <chrono>
#include <optional>

namespace vantry {

/// After how long the desktop deletes files from the Trash by itself: GNOME's setting, in a session of GNOME. Absent
/// where it does not, and where that is not known. Asks another program, for at most two seconds; any thread.
[[nodiscard]] std::optional<std::chrono::days> trashRetention();

} // namespace vantry
