#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace vantry {

/// The areas into which the findings are grouped.
enum class CleanupArea { quickWins, downloads, apps, developer, devices, system };

/// What is shown of an area. `symbolName` is the name of a symbol in SF Symbols, as all such names here.
struct CleanupAreaRow {
    CleanupArea value;
    int rawValue;
    std::string_view title;
    std::string_view subtitle;
    std::string_view symbolName;
};

/// Every area, in the order in which they are shown.
inline constexpr std::array<CleanupAreaRow, 6> allCleanupAreas{{
    {CleanupArea::quickWins, 0, "Temporary App Files", "Temporary files and old diagnostic records", "sparkles"},
    {CleanupArea::downloads, 1, "Downloads & Large Files", "Downloaded files that may no longer be needed",
     "arrow.down.circle"},
    {CleanupArea::apps, 2, "Apps & App Data", "Installers and app-owned data", "square.grid.2x2"},
    {CleanupArea::developer, 3, "Coding Tools", "Files created by coding tools", "hammer"},
    {CleanupArea::devices, 4, "Devices & Backups", "Backups and downloaded device updates", "externaldrive"},
    {CleanupArea::system, 5, "Managed by Apps or macOS", "Shown for awareness and never removed here", "gearshape.2"},
}};

[[nodiscard]] int rawValue(CleanupArea area);
[[nodiscard]] std::string_view title(CleanupArea area);
[[nodiscard]] std::string_view subtitle(CleanupArea area);
[[nodiscard]] std::string_view symbolName(CleanupArea area);
[[nodiscard]] std::optional<CleanupArea> cleanupAreaFromRawValue(int rawValue);

} // namespace vantry
