#include "base/Color.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(Rgba, IsOpaqueUnlessToldOtherwise) { EXPECT_EQ((Rgba{0.1, 0.2, 0.3}.alpha), 1.0); }

TEST(Rgba, WithAlphaKeepsTheComponentsAndReplacesTheAlpha) {
    const Rgba color = Rgba{0.1, 0.2, 0.3, 0.4}.withAlpha(0.5);
    EXPECT_EQ(color.red, 0.1);
    EXPECT_EQ(color.green, 0.2);
    EXPECT_EQ(color.blue, 0.3);
    EXPECT_EQ(color.alpha, 0.5);
}

TEST(DynamicColor, DiffersByRoleAndByAlpha) {
    const Color color = DynamicColor{SystemColor::label};
    EXPECT_EQ(color, Color(DynamicColor{SystemColor::label, 1.0}));
    EXPECT_NE(color, Color(DynamicColor{SystemColor::separator}));
    EXPECT_NE(color, Color(DynamicColor{SystemColor::label, 0.5}));
    EXPECT_NE(color, Color(Rgba{0, 0, 0, 1}));
}

} // namespace vantry
