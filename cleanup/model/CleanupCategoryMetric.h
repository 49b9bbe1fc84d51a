#pragma once

#include "cleanup/model/CleanupByteAmount.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace vantry {

/// What was measured for one category.
struct CleanupCategoryMetric {
    CleanupByteAmount occupied;           ///< everything that the category's places hold
    std::int64_t reviewableBytes = 0;     ///< the sizes of its candidates together
    std::int64_t reviewableItemCount = 0; ///< how many candidates those are

    bool operator==(const CleanupCategoryMetric&) const = default;
};

} // namespace vantry

template <>
struct std::hash<vantry::CleanupCategoryMetric> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupCategoryMetric& metric) const;
};
