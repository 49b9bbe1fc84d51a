#pragma once

#include "base/Time.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantry {

/// The startup volume's capacity at a moment. Amounts are bytes.
struct StorageSnapshot {
    std::string volumeName;
    std::int64_t totalBytes = 0;     ///< at least 1 when a reader made it
    std::int64_t availableBytes = 0; ///< 0 to `totalBytes` when a reader made it
    SystemTime updatedAt;
    std::optional<std::int64_t> reservedBytes; ///< reserved for the administrator, not part of the total; if known

    /// Never below 0, whatever the fields hold.
    [[nodiscard]] std::int64_t usedBytes() const;
    /// 0 to 1; 0 when the total is below 1.
    [[nodiscard]] double usedFraction() const;

    bool operator==(const StorageSnapshot&) const = default;
};

} // namespace vantry
