#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>

namespace vantry {

/// Whether the rows of a table are in the order of their enumeration, which `rowOf` relies on.
template <class Rows>
[[nodiscard]] constexpr bool rowsStandInOrder(const Rows& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (static_cast<std::size_t>(rows[i].value) != i)
            return false;
    return true;
}

template <class Rows, class Case>
[[nodiscard]] constexpr const auto& rowOf(const Rows& rows, Case value) {
    return rows.at(static_cast<std::size_t>(value));
}

/// The case whose raw value is exactly `rawValue`.
template <class Rows, class RawValue>
[[nodiscard]] constexpr auto caseOf(const Rows& rows, const RawValue& rawValue)
    -> std::optional<decltype(Rows::value_type::value)> {
    const auto row = std::ranges::find(rows, rawValue, &Rows::value_type::rawValue);
    if (row == rows.end())
        return std::nullopt;
    return row->value;
}

} // namespace vantry
