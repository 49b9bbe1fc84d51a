#include "rendering/BarStyle.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

template <class Case>
struct Row {
    Case value;
    const char* rawValue;
    const char* displayName;
};

constexpr Row<BarStyle> styles[] = {
    {BarStyle::storageGradient, "storageGradient", "Rainbow"},
    {BarStyle::macOSSegments, "macOSSegments", "macOS Storage Colors"},
    {BarStyle::vividTheme, "vividTheme", "Vivid Theme"},
    {BarStyle::currentTheme, "currentTheme", "Current Theme"},
};

constexpr Row<SegmentSizing> sizings[] = {
    {SegmentSizing::equal, "equal", "Equal Colors"},
    {SegmentSizing::verifiedSnapshot, "verifiedSnapshot", "Verified Storage Snapshot"},
};

// Every case is listed in order, and is stored by its raw value.
template <class Listed, class Expected, class FromRawValue>
void expectListed(const Listed& listed, const Expected& expected, FromRawValue fromRawValue) {
    ASSERT_EQ(std::size(listed), std::size(expected));
    for (std::size_t i = 0; i < std::size(listed); ++i) {
        EXPECT_EQ(listed[i].value, expected[i].value);
        EXPECT_EQ(static_cast<std::size_t>(expected[i].value), i) << "the order of the cases";
        EXPECT_EQ(listed[i].rawValue, expected[i].rawValue);
        EXPECT_EQ(listed[i].displayName, expected[i].displayName);
        EXPECT_EQ(rawValue(expected[i].value), expected[i].rawValue);
        EXPECT_EQ(fromRawValue(expected[i].rawValue), expected[i].value);
    }
}

} // namespace

TEST(BarStyle, EveryStyleIsListedInOrderWithItsRawValue) { expectListed(allBarStyles, styles, barStyleFromRawValue); }

TEST(BarStyle, OnlyAnExactRawValueIsAStyle) {
    for (const char* text :
         {"", "rainbow", "Rainbow", "vivid theme", "Vivid Theme", "StorageGradient", "storagegradient",
          "storageGradient ", " storageGradient", "storageGradien", "storage", "macosSegments", "equal", "0"})
        EXPECT_EQ(barStyleFromRawValue(text), std::nullopt) << text;
}

TEST(SegmentSizing, EverySizingIsListedInOrderWithItsRawValue) {
    expectListed(allSegmentSizings, sizings, segmentSizingFromRawValue);
}

TEST(SegmentSizing, OnlyAnExactRawValueIsASizing) {
    for (const char* text : {"", "Equal", "EQUAL", "equal ", "Equal Colors", "verifiedsnapshot", "VerifiedSnapshot",
                             "Verified Storage Snapshot", "storageGradient"})
        EXPECT_EQ(segmentSizingFromRawValue(text), std::nullopt) << text;
}

} // namespace vantry
