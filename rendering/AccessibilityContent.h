#pragma once

#include <string>

namespace vantry {

enum class AccessibilityRole { progressIndicator };

/// What a screen reader is told about a view. With `isElement` false it is told nothing and the rest is empty.
struct AccessibilityContent {
    bool isElement = false;
    AccessibilityRole role = AccessibilityRole::progressIndicator;
    std::string label;
    std::string value;

    bool operator==(const AccessibilityContent&) const = default;
};

} // namespace vantry
