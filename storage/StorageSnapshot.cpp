#include "storage/StorageSnapshot.h"

#include <algorithm>
#include <limits>

namespace vantry {

std::int64_t StorageSnapshot::usedBytes() const {
    if (availableBytes >= totalBytes)
        return 0;
    std::int64_t used = 0;
    if (__builtin_sub_overflow(totalBytes, availableBytes, &used))
        return std::numeric_limits<std::int64_t>::max();
    return used;
}

double StorageSnapshot::usedFraction() const {
    if (totalBytes < 1)
        return 0;
    return std::clamp(static_cast<double>(usedBytes()) / static_cast<double>(totalBytes), 0.0, 1.0);
}

} // namespace vantry
