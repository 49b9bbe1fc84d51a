#pragma once

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

/// Every sizing, by the same rule.
inline constexpr std::array<ChoiceRow<SegmentSizing>, 2> allSegmentSizings{{
    {SegmentSizing::equal, "equal", "Equal Colors"},
    {SegmentSizing::verifiedSnapshot, "verifiedSnapshot", "Verified Storage Snapshot"},
}};

[[nodiscard]] std::string_view rawValue(BarStyle style);
[[nodiscard]] std::optional<BarStyle> barStyleFromRawValue(std::string_view rawValue);

[[nodiscard]] std::string_view rawValue(SegmentSizing sizing);
[[nodiscard]] std::optional<SegmentSizing> segmentSizingFromRawValue(std::string_view rawValue);

} // namespace vantry
