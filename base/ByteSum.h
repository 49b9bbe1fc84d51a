#pragma once

#include <cstdint>
#include <limits>

namespace vantry {

/// Adds `more` to a sum of bytes, which stays at the largest value on overflow. Returns false on overflow.
inline bool addBytes(std::int64_t& sum, std::int64_t more) {
    const bool tooLarge = __builtin_add_overflow(sum, more, &sum);
    if (tooLarge)
        sum = std::numeric_limits<std::int64_t>::max();
    return !tooLarge;
}

} // namespace vantry
