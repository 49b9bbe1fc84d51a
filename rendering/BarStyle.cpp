#include "rendering/BarStyle.h"

#include <algorithm>

namespace vantry {

namespace {

template <class Rows>
std::optional<decltype(Rows::value_type::value)> valueOf(const Rows& rows, std::string_view rawValue) {
    const auto row = std::ranges::find(rows, rawValue, &Rows::value_type::rawValue);
    if (row == rows.end())
        return std::nullopt;
    return row->value;
}

// The rows stand in the order of their enumeration; the tests hold the tables to it.
template <class Rows, class Case>
const auto& rowOf(const Rows& rows, Case value) {
    return rows.at(static_cast<std::size_t>(value));
}

} // namespace

std::string_view rawValue(BarStyle style) { return rowOf(allBarStyles, style).rawValue; }
std::optional<BarStyle> barStyleFromRawValue(std::string_view rawValue) { return valueOf(allBarStyles, rawValue); }

std::string_view rawValue(SegmentSizing sizing) { return rowOf(allSegmentSizings, sizing).rawValue; }
std::optional<SegmentSizing> segmentSizingFromRawValue(std::string_view rawValue) {
    return valueOf(allSegmentSizings, rawValue);
}

} // namespace vantry
