#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCategory.h"
#include "cleanup/model/CleanupConfidence.h"
#include "cleanup/model/CleanupRemovalDisposition.h"
#include "platform/FileFingerprint.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace vantry {

/// A file or folder that is offered for review or for the Trash. Equal and hashed by every field.
struct CleanupCandidate {
    using Category = CleanupCategory;
    using Confidence = CleanupConfidence;
    using RemovalDisposition = CleanupRemovalDisposition;

    std::string uiID; ///< fresh for every candidate made, also for the same file
    std::filesystem::path url;
    std::string title;
    Category category;
    std::string reason;    ///< the line under the title
    std::int64_t size = 0; ///< bytes it occupies
    Confidence confidence;
    // What identified the item when it was found; compared again before it is moved.
    std::optional<SystemTime> scannedModificationDate;
    std::optional<std::string> scannedResourceIdentifier;
    std::optional<std::string> scannedVolumeIdentifier;
    SystemTime scannedAt;

    /// Reads the fingerprint of the item at the absolute path `url` and the clock. Blocking; any thread. Never fails:
    /// what cannot be read of the fingerprint is absent.
    CleanupCandidate(const std::filesystem::path& url, std::string title, Category category, std::string reason,
                     std::int64_t size, Confidence confidence);

    /// The same with a fingerprint that was read before, at `scannedAt`. Touches no disk.
    [[nodiscard]] static CleanupCandidate withFingerprint(const std::filesystem::path& url, std::string title,
                                                          Category category, std::string reason, std::int64_t size,
                                                          Confidence confidence, FileFingerprint fingerprint,
                                                          SystemTime scannedAt);

    /// The standardized path: the same for every candidate of one path.
    [[nodiscard]] std::string id() const;
    [[nodiscard]] RemovalDisposition removalDisposition() const;
    [[nodiscard]] bool canMoveToTrash() const;

    bool operator==(const CleanupCandidate&) const = default;

private:
    CleanupCandidate(const std::filesystem::path& url, std::string title, Category category, std::string reason,
                     std::int64_t size, Confidence confidence, FileFingerprint fingerprint, SystemTime scannedAt);
};

} // namespace vantry

template <>
struct std::hash<vantry::CleanupCandidate> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupCandidate& candidate) const;
};
