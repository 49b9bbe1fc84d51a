#pragma once

#include "app/ContextMenu.h"
#include "rendering/VantryView.h"

#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// The item in the menu bar, the tray or the strip: a button with neither title nor image that hosts the bar. The
/// button carries the accessibility text; the bar inside stays silent.
struct StatusItemContent {
    double length = 60; ///< points
    std::string tooltip;
    std::string accessibilityLabel; ///< empty until the volume was read
    VantryView view;
    ContextMenuContent menu; ///< for hosts that draw the menu themselves

    bool operator==(const StatusItemContent&) const = default;
};

struct StatusItemState {
    UserChoices choices;
    std::optional<StorageSnapshot> snapshot;      ///< the last successful read
    std::optional<std::string> readFailure;       ///< why the last read failed; absent after a successful one
    std::optional<std::vector<Rgba>> themeColors; ///< absent until the first ones are known
};

[[nodiscard]] StatusItemContent statusItemContent(const StatusItemState& state);

} // namespace vantry
