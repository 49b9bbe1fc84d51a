#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCategory.h"
#include "platform/FileFingerprint.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// How sure a finder is that nobody needs the item.
enum class CleanupConfidence { suggested, review };

/// `rawValue` is also the label.
struct CleanupConfidenceRow {
    CleanupConfidence value;
    std::string_view rawValue;
};

inline constexpr std::array<CleanupConfidenceRow, 2> allCleanupConfidences{{
    {CleanupConfidence::suggested, "Low Risk"},
    {CleanupConfidence::review, "Review First"},
}};

[[nodiscard]] std::string_view rawValue(CleanupConfidence confidence);
[[nodiscard]] std::optional<CleanupConfidence> cleanupConfidenceFromRawValue(std::string_view rawValue);

/// A file or folder offered for review or for the Trash. Equality and hash cover every field.
struct CleanupCandidate {
    using Category = CleanupCategory;
    using Confidence = CleanupConfidence;
    using RemovalDisposition = CleanupRemovalDisposition;

    std::string uiID; ///< new for every candidate, even for the same file
    std::filesystem::path url;
    std::string title;
    Category category;
    std::string reason;    ///< the line under the title
    std::int64_t size = 0; ///< allocated bytes
    Confidence confidence;
    // These identified the item when it was found; they are compared before it is moved.
    std::optional<SystemTime> scannedModificationDate;
    std::optional<std::string> scannedResourceIdentifier;
    std::optional<std::string> scannedVolumeIdentifier;
    SystemTime scannedAt;

    /// Reads the clock and the fingerprint of the item at the absolute path `url`. Blocking; any thread. Never fails:
    /// fields that cannot be read are absent.
    CleanupCandidate(const std::filesystem::path& url, std::string title, Category category, std::string reason,
                     std::int64_t size, Confidence confidence);

    /// The same with a fingerprint that was read at `scannedAt`. Touches no disk.
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
