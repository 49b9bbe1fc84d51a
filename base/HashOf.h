#pragma once

#include <cstddef>
#include <functional>

namespace vantry {

/// One hash of `values` in their order. Each type must have a `std::hash`.
template <class... Values>
[[nodiscard]] std::size_t hashOf(const Values&... values) {
    std::size_t all = 0;
    // The constant spreads the bits of small numbers.
    ((all ^= std::hash<Values>{}(values) + static_cast<std::size_t>(0x9e3779b97f4a7c15U) + (all << 6) + (all >> 2)),
     ...);
    return all;
}

} // namespace vantry
