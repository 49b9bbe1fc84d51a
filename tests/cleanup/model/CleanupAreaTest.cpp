#include "cleanup/model/CleanupArea.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <optional>

namespace vantry {

namespace {

constexpr struct {
    CleanupArea area;
    int rawValue;
    const char* title;
    const char* subtitle;
    const char* symbolName;
} areas[] = {
    {CleanupArea::quickWins, 0, "Temporary App Files", "Temporary files and old diagnostic records", "sparkles"},
    {CleanupArea::downloads, 1, "Downloads & Large Files", "Downloaded files that may no longer be needed",
     "arrow.down.circle"},
    {CleanupArea::apps, 2, "Apps & App Data", "Installers and app-owned data", "square.grid.2x2"},
    {CleanupArea::developer, 3, "Coding Tools", "Files created by coding tools", "hammer"},
    {CleanupArea::devices, 4, "Devices & Backups", "Backups and downloaded device updates", "externaldrive"},
    {CleanupArea::system, 5, "Managed by Apps or macOS", "Shown for awareness and never removed here", "gearshape.2"},
};

} // namespace

TEST(CleanupArea, EveryAreaIsListedInOrder) {
    ASSERT_EQ(std::size(allCleanupAreas), std::size(areas));
    for (std::size_t i = 0; i < std::size(areas); ++i)
        EXPECT_EQ(allCleanupAreas.at(i).value, areas[i].area);
}

TEST(CleanupArea, HasItsNumberItsTextsAndItsSymbol) {
    for (const auto& expected : areas) {
        EXPECT_EQ(rawValue(expected.area), expected.rawValue);
        EXPECT_EQ(title(expected.area), expected.title);
        EXPECT_EQ(subtitle(expected.area), expected.subtitle);
        EXPECT_EQ(symbolName(expected.area), expected.symbolName);
        EXPECT_EQ(cleanupAreaFromRawValue(expected.rawValue), expected.area);
    }
}

TEST(CleanupArea, NoOtherNumberIsAnArea) {
    for (const int number : {-1, 6, 7, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(cleanupAreaFromRawValue(number), std::nullopt) << number;
}

} // namespace vantry
