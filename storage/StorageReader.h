#pragma once

#include "base/Result.h"
#include "platform/VolumeCapacity.h"
#include "storage/StorageSnapshot.h"

#include <expected>
#include <optional>
#include <string>
#include <variant>

namespace vantry {

/// Figures that a volume may fail to report.
enum class StorageReadError { missingCapacity, missingAvailableCapacity };

/// The sentence that the user is shown.
[[nodiscard]] std::string errorDescription(StorageReadError error);

/// Why the strict reader has no snapshot: a figure is missing, or the system's own error, unchanged.
struct StorageReadFailure {
    std::variant<StorageReadError, Error> cause;

    [[nodiscard]] std::string localizedDescription() const;
    bool operator==(const StorageReadFailure&) const = default;
};

using StorageReadResult = std::expected<StorageSnapshot, StorageReadFailure>;

/// Reads the volume that holds "/". No state; any thread; blocking.
namespace StorageReader {

/// Strict: returns why a read failed. Prefers the figure that counts space the system can free by itself.
[[nodiscard]] StorageReadResult readSystemVolume();

/// Basic: absent on any failure; uses the plain figure of the file system.
[[nodiscard]] std::optional<StorageSnapshot> readBasicSystemVolume();

/// The strict reader's decision about what the system said.
[[nodiscard]] StorageReadResult strictSnapshot(const Result<VolumeCapacity>& said, SystemTime now);

/// The basic reader's decision about what the system said.
[[nodiscard]] std::optional<StorageSnapshot> basicSnapshot(const Result<VolumeCapacity>& said, SystemTime now);

} // namespace StorageReader

} // namespace vantry
