#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupCategory.h"
#include "storage/StorageSnapshot.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// An amount of bytes: exact, a lower bound because measuring stopped early, or unavailable.
class CleanupByteAmount {
public:
    [[nodiscard]] static constexpr CleanupByteAmount exact(std::int64_t bytes) { return {bytes, true}; }
    [[nodiscard]] static constexpr CleanupByteAmount atLeast(std::int64_t bytes) { return {bytes, false}; }
    [[nodiscard]] static constexpr CleanupByteAmount unavailable() { return {std::nullopt, false}; }

    /// Unavailable.
    constexpr CleanupByteAmount() = default;

    /// The amount or its lower bound; absent when unavailable.
    [[nodiscard]] constexpr std::optional<std::int64_t> knownBytes() const { return knownBytes_; }
    [[nodiscard]] constexpr bool isExact() const { return isExact_; }

    bool operator==(const CleanupByteAmount&) const = default;

private:
    constexpr CleanupByteAmount(std::optional<std::int64_t> knownBytes, bool isExact)
        : knownBytes_(knownBytes),
          isExact_(isExact) {}

    std::optional<std::int64_t> knownBytes_;
    bool isExact_ = false;
};

/// What was measured for one category.
struct CleanupCategoryMetric {
    CleanupByteAmount occupied;           ///< everything in the category's places
    std::int64_t reviewableBytes = 0;     ///< the total size of its candidates
    std::int64_t reviewableItemCount = 0; ///< the number of its candidates

    bool operator==(const CleanupCategoryMetric&) const = default;
};

/// How the check of one category ended.
enum class CleanupScanState {
    checked,          ///< at least one of its places was listed completely
    limited,          ///< checked, but its finder stopped early
    notPresent,       ///< none of its places is a folder
    relocated,        ///< the place is a link, which is not followed
    permissionNeeded, ///< a place may not be read
    unavailable,      ///< a place could not be listed completely in time
};

/// Its name for programs.
[[nodiscard]] std::string_view identifier(CleanupScanState state);
/// The displayed status.
[[nodiscard]] std::string_view title(CleanupScanState state);

/// What was measured at an avenue's own places.
struct GuideUsage {
    CleanupScanState state = CleanupScanState::notPresent;
    CleanupByteAmount occupied;
    std::vector<std::filesystem::path> paths; ///< the places that are there
    std::string note = {};                    ///< a sentence about how they are kept here; often empty

    bool operator==(const GuideUsage&) const = default;
};

/// The result of one scan.
struct CleanupScanReport {
    std::vector<CleanupCandidate> candidates;                 ///< in the order of display
    std::map<CleanupCategory, CleanupScanState> states;       ///< one entry for every category
    std::map<CleanupCategory, CleanupCategoryMetric> metrics; ///< one entry for every category
    std::optional<StorageSnapshot> storageSnapshot;           ///< read at the end of the scan
    std::chrono::duration<double> duration{};                 ///< how long the scan took
    std::set<std::string> incompletePaths;                    ///< ids of the candidates whose size is a lower bound
    std::map<std::string, GuideUsage> guide = {};             ///< by an avenue's identifier; empty until measured

    [[nodiscard]] bool sizeIsLowerBound(const CleanupCandidate& candidate) const {
        return incompletePaths.contains(candidate.id());
    }

    bool operator==(const CleanupScanReport&) const = default;
};

} // namespace vantry

template <>
struct std::hash<vantry::CleanupByteAmount> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupByteAmount& amount) const;
};

template <>
struct std::hash<vantry::CleanupCategoryMetric> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupCategoryMetric& metric) const;
};

template <>
struct std::hash<vantry::CleanupScanReport> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupScanReport& report) const;
};
