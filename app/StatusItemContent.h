#pragma once

#include "rendering/VantryView.h"

#include <string>

namespace vantry {

/// The item in the menu bar, the tray or the strip: a button with neither title nor image of its own that hosts the
/// bar. The button carries the accessibility text; the bar inside stays silent.
struct StatusItemContent {
    double length = 60; ///< points
    std::string tooltip;
    std::string accessibilityLabel; ///< empty until the volume was read
    VantryView view;

    bool operator==(const StatusItemContent&) const = default;
};

} // namespace vantry
