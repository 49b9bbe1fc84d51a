#include "platform/linux/SystemColors.h"

#include "base/CaseTable.h"

#include <array>

namespace vantry {

namespace {

constexpr Rgba rgb(int red, int green, int blue, double alpha = 1) {
    return {red / 255.0, green / 255.0, blue / 255.0, alpha};
}

struct Row {
    SystemColor value;
    Rgba light;
    Rgba dark;
};

// Hues: Apple, Human Interface Guidelines, Color, Specifications, macOS (default contrast), 8-bit sRGB.
// Text roles, separator and window background: AppKit's catalog colours in the aqua and dark aqua appearances.
constexpr std::array<Row, 17> rows{{
    {SystemColor::red, rgb(255, 59, 48), rgb(255, 69, 58)},
    {SystemColor::orange, rgb(255, 149, 0), rgb(255, 159, 10)},
    {SystemColor::yellow, rgb(255, 204, 0), rgb(255, 214, 10)},
    {SystemColor::green, rgb(40, 205, 65), rgb(50, 215, 75)},
    {SystemColor::teal, rgb(89, 173, 196), rgb(106, 196, 220)},
    {SystemColor::blue, rgb(0, 122, 255), rgb(10, 132, 255)},
    {SystemColor::pink, rgb(255, 45, 85), rgb(255, 55, 95)},
    {SystemColor::cyan, rgb(85, 190, 240), rgb(90, 200, 245)},
    {SystemColor::mint, rgb(0, 199, 190), rgb(99, 230, 226)},
    {SystemColor::gray, rgb(142, 142, 147), rgb(152, 152, 157)},
    {SystemColor::purple, rgb(175, 82, 222), rgb(191, 90, 242)},
    {SystemColor::label, rgb(0, 0, 0, 0.85), rgb(255, 255, 255, 0.85)},
    {SystemColor::secondaryLabel, rgb(0, 0, 0, 0.5), rgb(255, 255, 255, 0.55)},
    {SystemColor::tertiaryLabel, rgb(0, 0, 0, 0.26), rgb(255, 255, 255, 0.25)},
    {SystemColor::disabledControlText, rgb(0, 0, 0, 0.25), rgb(255, 255, 255, 0.25)},
    {SystemColor::separator, rgb(0, 0, 0, 0.1), rgb(255, 255, 255, 0.1)},
    {SystemColor::windowBackground, rgb(236, 236, 236), rgb(50, 50, 50)},
}};

static_assert(rowsStandInOrder(rows));

} // namespace

Rgba resolvedSystemColor(SystemColor role, Appearance appearance) {
    const Row& row = rowOf(rows, role);
    return appearance == Appearance::dark ? row.dark : row.light;
}

} // namespace vantry
