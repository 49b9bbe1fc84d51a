#include "storage/StorageReader.h"

#include <algorithm>
#include <chrono>

namespace vantry {

std::string errorDescription(StorageReadError error) {
    switch (error) {
    case StorageReadError::missingCapacity: return "The total disk capacity is unavailable.";
    case StorageReadError::missingAvailableCapacity: return "The available disk capacity is unavailable.";
    }
    return {};
}

std::string StorageReadFailure::localizedDescription() const {
    if (const auto* missing = std::get_if<StorageReadError>(&cause))
        return errorDescription(*missing);
    return std::get<Error>(cause).message;
}

namespace StorageReader {

namespace {

constexpr const char* systemVolume = "/";

StorageReadResult failure(StorageReadError error) { return std::unexpected(StorageReadFailure{error}); }

StorageSnapshot snapshot(const VolumeCapacity& said, const char* nameIfUnnamed, std::int64_t available,
                         SystemTime now) {
    return {said.name.value_or(nameIfUnnamed), *said.totalBytes,
            std::clamp<std::int64_t>(available, 0, *said.totalBytes), now, said.reservedBytes};
}

} // namespace

StorageReadResult strictSnapshot(const Result<VolumeCapacity>& said, SystemTime now) {
    if (!said)
        return std::unexpected(StorageReadFailure{said.error()});
    if (said->totalBytes.value_or(0) < 1)
        return failure(StorageReadError::missingCapacity);
    const auto available =
        said->availableForImportantUsageBytes ? said->availableForImportantUsageBytes : said->availableBytes;
    if (!available)
        return failure(StorageReadError::missingAvailableCapacity);
    return snapshot(*said, "Macintosh HD", *available, now);
}

std::optional<StorageSnapshot> basicSnapshot(const Result<VolumeCapacity>& said, SystemTime now) {
    if (!said || said->totalBytes.value_or(0) < 1 || !said->availableBytes)
        return std::nullopt;
    return snapshot(*said, "Mac Storage", *said->availableBytes, now);
}

StorageReadResult readSystemVolume() {
    const auto said = readVolumeCapacity(systemVolume);
    return strictSnapshot(said, std::chrono::system_clock::now());
}

std::optional<StorageSnapshot> readBasicSystemVolume() {
    const auto said = readFileSystemAttributes(systemVolume);
    return basicSnapshot(said, std::chrono::system_clock::now());
}

} // namespace StorageReader

} // namespace vantry
