#pragma once

namespace vantry {

/// Lengths are points (macOS) or logical pixels (Qt); y grows downwards.
struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double maxY() const { return y + height; }
    [[nodiscard]] Rect inset(double dx, double dy) const { return {x + dx, y + dy, width - 2 * dx, height - 2 * dy}; }

    bool operator==(const Rect&) const = default;
};

} // namespace vantry
