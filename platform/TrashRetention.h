#pragma once

#include "platform/StopSwitch.h"

#include <chrono>
#include <memory>
#include <optional>

namespace vantry {

/// After how long the desktop deletes files from the Trash by itself: GNOME's setting, in a session of GNOME. Absent
/// where it does not, and where that is not known. Asks another program, for at most two seconds or until `stopSwitch`,
/// which may be null, is stopped; any thread.
[[nodiscard]] std::optional<std::chrono::days> trashRetention(const std::shared_ptr<StopSwitch>& stopSwitch);

} // namespace vantry
