#include "rendering/VantryView.h"

#include <algorithm>
#include <cmath>

namespace vantry {

namespace {

constexpr double labelWidth = 30;
constexpr double labelGap = 5;

int percentage(const StorageSnapshot& snapshot) { return static_cast<int>(std::lround(snapshot.usedFraction() * 100)); }

} // namespace

void VantryView::draw(Canvas& canvas, Size bounds, std::optional<Appearance> appearance) const {
    const double label = showsPercentageLabel ? labelWidth + labelGap : 0;
    const Rect bar{horizontalInset, std::floor((bounds.height - barHeight) / 2),
                   std::max(bounds.width - 2 * horizontalInset - label, 1.0), barHeight};
    const RoundedRect track{bar, barHeight / 2};

    canvas.fill(track, StoragePalette::availableColor(appearance));

    const double fraction = snapshot ? snapshot->usedFraction() : 0;
    if (fraction > 0) {
        const double usedWidth = std::max(fraction < 1 ? fraction * bar.width : bar.width, 1.0);
        canvas.save();
        canvas.clip(track);
        StoragePalette::drawUsedFill(canvas, {bar.x, bar.y, usedWidth, bar.height}, barStyle, segmentSizing,
                                     themeColors);
        canvas.restore();
        if (usedWidth < bar.width - 1)
            canvas.fill(Rect{std::floor(bar.x + usedWidth), bar.y, 1.0, bar.height},
                        DynamicColor{SystemColor::windowBackground, 0.4});
    }

    canvas.stroke(track, StoragePalette::borderColor(appearance), 0.75);
    drawPercentage(canvas, bounds, bar);
}

void VantryView::drawPercentage(Canvas& canvas, Size bounds, const Rect& bar) const {
    if (!showsPercentageLabel)
        return;
    const Font font{10.5, FontWeight::medium, true};
    const double height = canvas.boundingHeight(font);
    const Rect rect{bar.maxX() + labelGap, std::floor((bounds.height - height) / 2) - 1,
                    std::max(bounds.width - bar.maxX() - labelGap - horizontalInset, 0.0), height + 2};
    canvas.drawText(percentageText(), font, DynamicColor{SystemColor::label}, rect);
}

std::string VantryView::percentageText() const {
    return (snapshot ? std::to_string(percentage(*snapshot)) : std::string("—")) + "%";
}

AccessibilityContent VantryView::accessibility() const {
    if (!exposesAccessibility)
        return {};
    const auto role = AccessibilityRole::progressIndicator;
    if (!snapshot)
        return {true, role, "Storage", "Loading"};
    return {true, role, "Storage used", std::to_string(percentage(*snapshot)) + " percent"};
}

} // namespace vantry
