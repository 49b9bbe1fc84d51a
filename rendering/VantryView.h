#pragma once

#include "rendering/BarStyle.h"
#include "rendering/Canvas.h"
#include "rendering/StoragePalette.h"
#include "storage/StorageSnapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace vantry {

enum class AccessibilityRole { progressIndicator };

/// What a screen reader says about a view. If `isElement` is false it says nothing, and the rest is empty.
struct AccessibilityContent {
    bool isElement = false;
    AccessibilityRole role = AccessibilityRole::progressIndicator;
    std::string label;
    std::string value;

    bool operator==(const AccessibilityContent&) const = default;
};

/// The storage bar: a capsule whose left part, as wide as the used share of the volume, is painted in the chosen style,
/// optionally followed by the percentage. A value: its owner sets the properties and gives a copy to the front
/// end, which redraws when the copy differs from the last one or the appearance changes. Lengths are points.
struct VantryView {
    std::optional<StorageSnapshot> snapshot;
    double barHeight = 7.0;
    double horizontalInset = 3.0;
    bool showsPercentageLabel = false;
    BarStyle barStyle = BarStyle::storageGradient;
    SegmentSizing segmentSizing = SegmentSizing::verifiedSnapshot;
    std::vector<Rgba> themeColors{StoragePalette::gradientColors.begin(), StoragePalette::gradientColors.end()};
    bool exposesAccessibility = true;

    /// Draws the whole view into (0, 0, bounds). Main thread.
    void draw(Canvas& canvas, Size bounds, std::optional<Appearance> appearance) const;

    [[nodiscard]] AccessibilityContent accessibility() const;

    /// "47%", or "—%" without a snapshot.
    [[nodiscard]] std::string percentageText() const;

    bool operator==(const VantryView&) const = default;

private:
    void drawPercentage(Canvas& canvas, Size bounds, const Rect& bar) const;
};

} // namespace vantry
