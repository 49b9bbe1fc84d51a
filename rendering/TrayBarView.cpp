#include "rendering/TrayBarView.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vantry::TrayBarView {

namespace {

constexpr Rgba trackColor{0.82, 0.824, 0.835, 0.92};
constexpr Rgba endMark{1, 1, 1, 0.9};
constexpr Rgba darkLine{0, 0, 0, 0.55};

struct Figure {
    std::string text;
    Font font;
    double width = 0;
};

// The largest size at which the percentage fits, preferably with its sign.
std::optional<Figure> fittingFigure(const Canvas& canvas, const VantryView& bar, double width, double side) {
    std::string withSign = bar.percentageText();
    std::string withoutSign = withSign.substr(0, withSign.size() - 1);
    const double smallest = std::max(9.0, std::round(side * 0.4));
    const double largest = std::max(smallest, std::round(side * 0.56));
    for (const auto& text : {withSign, withoutSign})
        for (double size = largest; size >= smallest; size -= 1) {
            const Font font{size, FontWeight::semibold, true};
            if (const double textWidth = canvas.textWidth(text, font); textWidth <= width)
                return Figure{text, font, textWidth};
        }
    return std::nullopt;
}

void drawFigure(Canvas& canvas, const Figure& figure, const Rect& rect, std::optional<Appearance> appearance) {
    const bool dark = appearance == Appearance::dark;
    const Rgba ink = dark ? Rgba{1, 1, 1} : Rgba{0.1, 0.1, 0.11};
    const Rgba halo = dark ? Rgba{0, 0, 0, 0.4} : Rgba{1, 1, 1, 0.45};
    for (const double dx : {-1.0, 0.0, 1.0})
        for (const double dy : {-1.0, 0.0, 1.0})
            if (dx != 0 || dy != 0)
                canvas.drawText(figure.text, figure.font, halo, {rect.x + dx, rect.y + dy, rect.width, rect.height});
    canvas.drawText(figure.text, figure.font, ink, rect);
}

void drawCapsule(Canvas& canvas, const VantryView& bar, const Rect& rect, double unit) {
    const RoundedRect outer{rect, rect.height / 2};
    const Rect inside = rect.inset(1, 1);
    const RoundedRect capsule{inside, inside.height / 2};
    canvas.fill(outer, darkLine);
    canvas.save();
    canvas.clip(capsule);
    canvas.fill(inside, trackColor);
    const double fraction = bar.snapshot ? bar.snapshot->usedFraction() : 0;
    if (fraction > 0) {
        const double usedWidth = std::max(inside.width * fraction, unit);
        StoragePalette::drawUsedFill(canvas, {inside.x, inside.y, usedWidth, inside.height}, bar.barStyle,
                                     bar.segmentSizing, bar.themeColors);
        if (usedWidth < inside.width - unit) // separates grey segments from the grey track
            canvas.fill(Rect{std::floor(inside.x + usedWidth), inside.y, unit, inside.height}, endMark);
    }
    canvas.restore();
}

} // namespace

void draw(Canvas& canvas, const VantryView& bar, double side, std::optional<Appearance> appearance) {
    const double unit =
        std::max(1.0, std::round(side / 22)); // one pixel at the usual size of 22; panels scale larger pictures down
    const auto figure = bar.showsPercentageLabel ? fittingFigure(canvas, bar, side, side) : std::nullopt;
    const double height = figure ? std::round(side * 0.34) : 2 * std::round(side * 0.26);
    const double y = figure ? side - height - unit : std::floor((side - height) / 2);
    if (figure)
        drawFigure(canvas, *figure, {0, 0, side, y}, appearance);
    drawCapsule(canvas, bar, {0, y, side, height}, unit);
}

} // namespace vantry::TrayBarView
