#include "platform/linux/SystemColors.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

struct Expected {
    SystemColor role;
    Rgba light; ///< 8-bit components
    Rgba dark;
};

constexpr Expected table[] = {
    {SystemColor::red, {255, 59, 48}, {255, 69, 58}},
    {SystemColor::orange, {255, 149, 0}, {255, 159, 10}},
    {SystemColor::yellow, {255, 204, 0}, {255, 214, 10}},
    {SystemColor::green, {40, 205, 65}, {50, 215, 75}},
    {SystemColor::teal, {89, 173, 196}, {106, 196, 220}},
    {SystemColor::blue, {0, 122, 255}, {10, 132, 255}},
    {SystemColor::pink, {255, 45, 85}, {255, 55, 95}},
    {SystemColor::cyan, {85, 190, 240}, {90, 200, 245}},
    {SystemColor::mint, {0, 199, 190}, {99, 230, 226}},
    {SystemColor::gray, {142, 142, 147}, {152, 152, 157}},
    {SystemColor::purple, {175, 82, 222}, {191, 90, 242}},
    {SystemColor::label, {0, 0, 0, 0.85}, {255, 255, 255, 0.85}},
    {SystemColor::secondaryLabel, {0, 0, 0, 0.5}, {255, 255, 255, 0.55}},
    {SystemColor::tertiaryLabel, {0, 0, 0, 0.26}, {255, 255, 255, 0.25}},
    {SystemColor::disabledControlText, {0, 0, 0, 0.25}, {255, 255, 255, 0.25}},
    {SystemColor::separator, {0, 0, 0, 0.1}, {255, 255, 255, 0.1}},
    {SystemColor::windowBackground, {236, 236, 236}, {50, 50, 50}},
};

void expectColor(SystemColor role, Appearance appearance, const Rgba& eightBit) {
    const Rgba color = resolvedSystemColor(role, appearance);
    const auto which = static_cast<int>(role);
    EXPECT_DOUBLE_EQ(color.red * 255, eightBit.red) << which;
    EXPECT_DOUBLE_EQ(color.green * 255, eightBit.green) << which;
    EXPECT_DOUBLE_EQ(color.blue * 255, eightBit.blue) << which;
    EXPECT_EQ(color.alpha, eightBit.alpha) << which;
}

} // namespace

TEST(SystemColors, EveryRoleHasThePublishedValueOfEachAppearance) {
    int expectedRole = 0;
    for (const auto& [role, light, dark] : table) {
        EXPECT_EQ(static_cast<int>(role), expectedRole++) << "a role is missing in this test";
        expectColor(role, Appearance::light, light);
        expectColor(role, Appearance::dark, dark);
    }
    EXPECT_EQ(expectedRole, static_cast<int>(SystemColor::windowBackground) + 1);
}

TEST(SystemColors, EveryRoleFollowsTheAppearance) {
    for (const auto& row : table)
        EXPECT_NE(resolvedSystemColor(row.role, Appearance::light), resolvedSystemColor(row.role, Appearance::dark))
            << static_cast<int>(row.role);
}

} // namespace vantry
