#pragma once

#include "rendering/BarStyle.h"
#include "rendering/Canvas.h"
#include "rendering/StoragePalette.h"

#include <optional>
#include <vector>

namespace vantry {

/// The round legend swatch beside a figure, painted like the bar. A value, like `VantryView`.
struct SolidSwatchView {
    enum class Kind { used, available };

    explicit SolidSwatchView(Kind kindOfSwatch) : kind(kindOfSwatch) {}

    static constexpr Size fixedSize{12.0, 12.0}; ///< points

    Kind kind;
    BarStyle barStyle = BarStyle::storageGradient;
    SegmentSizing segmentSizing = SegmentSizing::verifiedSnapshot;
    std::vector<Rgba> themeColors{StoragePalette::gradientColors.begin(), StoragePalette::gradientColors.end()};

    /// Draws into (0, 0, bounds). Main thread.
    void draw(Canvas& canvas, Size bounds, std::optional<Appearance> appearance) const;

    bool operator==(const SolidSwatchView&) const = default;
};

} // namespace vantry
