#include "base/Geometry.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(Rect, EndsAtItsOriginPlusItsSize) {
    const Rect rect{3, 5, 20, 7};
    EXPECT_EQ(rect.maxX(), 23);
    EXPECT_EQ(rect.maxY(), 12);
}

TEST(Rect, AnInsetTakesFromEverySide) {
    EXPECT_EQ((Rect{3, 5, 20, 7}.inset(1, 2)), (Rect{4, 7, 18, 3}));
    EXPECT_EQ((Rect{3, 5, 20, 7}.inset(0, 0.5)), (Rect{3, 5.5, 20, 6}));
    EXPECT_EQ((Rect{3, 5, 20, 7}.inset(-1, -1)), (Rect{2, 4, 22, 9}));
}

} // namespace vantry
