#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace vantry {

/// How sure a finder is that nobody needs what it found.
enum class CleanupConfidence { suggested, review };

/// `rawValue` is also the label that is shown.
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

} // namespace vantry
