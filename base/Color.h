#pragma once

#include <variant>

namespace vantry {

/// The appearance of the interface. An unknown one is an absent `std::optional<Appearance>`.
enum class Appearance { light, dark };

/// sRGB components, 0 to 1, alpha not premultiplied.
struct Rgba {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    [[nodiscard]] Rgba withAlpha(double value) const { return {red, green, blue, value}; }
    bool operator==(const Rgba&) const = default;
};

/// The colours that the system defines by role and that follow its appearance (`platform/linux/SystemColors.h` resolves
/// them).
enum class SystemColor {
    red,
    orange,
    yellow,
    green,
    teal,
    blue,
    pink,
    cyan,
    mint,
    gray,
    purple,
    label,
    secondaryLabel,
    tertiaryLabel,
    disabledControlText,
    separator,
    windowBackground,
};

/// A role that follows the appearance, with its own alpha factor.
struct DynamicColor {
    SystemColor role = SystemColor::label;
    double alpha = 1;

    bool operator==(const DynamicColor&) const = default;
};

/// The colours that a canvas accepts.
using Color = std::variant<Rgba, DynamicColor>;

} // namespace vantry
