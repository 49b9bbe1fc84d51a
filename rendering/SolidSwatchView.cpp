#include "rendering/SolidSwatchView.h"

namespace vantry {

void SolidSwatchView::draw(Canvas& canvas, Size bounds, std::optional<Appearance> appearance) const {
    const Ellipse oval{Rect{0, 0, bounds.width, bounds.height}.inset(1.0, 1.0)};
    if (kind == Kind::available) {
        canvas.fill(oval, StoragePalette::availableColor(appearance));
        return;
    }
    canvas.save();
    canvas.clip(oval);
    StoragePalette::drawUsedFill(canvas, oval.rect, barStyle, segmentSizing, themeColors);
    canvas.restore();
}

} // namespace vantry
