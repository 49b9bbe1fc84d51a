#pragma once

#include "base/CaseTable.h"

#include <array>
#include <optional>
#include <string_view>

namespace vantry {

/// How the used part of the bar is coloured.
enum class BarStyle { storageGradient, macOSSegments, vividTheme, currentTheme };

/// How wide the segments of `BarStyle::macOSSegments` are.
enum class SegmentSizing { equal, verifiedSnapshot };

/// One row of a choice: `rawValue` is what is stored, `displayName` what is shown.
template <class Case>
struct ChoiceRow {
    Case value;
    std::string_view rawValue;
    std::string_view displayName;
};

/// Every style, in the order of the enumeration, which is also the order of every list that shows them.
inline constexpr std::array<ChoiceRow<BarStyle>, 4> allBarStyles{{
    {BarStyle::storageGradient, "storageGradient", "Rainbow"},
    {BarStyle::macOSSegments, "macOSSegments", "macOS Storage Colors"},
    {BarStyle::vividTheme, "vividTheme", "Vivid Theme"},
    {BarStyle::currentTheme, "currentTheme", "Current Theme"},
}};

/// Every sizing, in the same way.
inline constexpr std::array<ChoiceRow<SegmentSizing>, 2> allSegmentSizings{{
    {SegmentSizing::equal, "equal", "Equal Colors"},
    {SegmentSizing::verifiedSnapshot, "verifiedSnapshot", "Verified Storage Snapshot"},
}};

static_assert(rowsStandInOrder(allBarStyles) && rowsStandInOrder(allSegmentSizings));

[[nodiscard]] inline std::string_view rawValue(BarStyle style) { return rowOf(allBarStyles, style).rawValue; }
[[nodiscard]] inline std::optional<BarStyle> barStyleFromRawValue(std::string_view rawValue) {
    return caseOf(allBarStyles, rawValue);
}

[[nodiscard]] inline std::string_view rawValue(SegmentSizing sizing) {
    return rowOf(allSegmentSizings, sizing).rawValue;
}
[[nodiscard]] inline std::optional<SegmentSizing> segmentSizingFromRawValue(std::string_view rawValue) {
    return caseOf(allSegmentSizings, rawValue);
}

} // namespace vantry
