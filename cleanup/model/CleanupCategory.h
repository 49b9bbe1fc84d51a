#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace vantry {

/// The areas that findings are grouped into.
enum class CleanupArea { quickWins, downloads, apps, developer, devices, system };

/// The texts of an area, and its name for programs. `symbolName` is a name in SF Symbols, here and elsewhere.
struct CleanupAreaRow {
    CleanupArea value;
    std::string_view identifier;
    int rawValue;
    std::string_view title;
    std::string_view subtitle;
    std::string_view symbolName;
};

/// Every area, in the order of display.
inline constexpr std::array<CleanupAreaRow, 6> allCleanupAreas{{
    {CleanupArea::quickWins, "quickWins", 0, "Temporary App Files", "Temporary files and old diagnostic records",
     "sparkles"},
    {CleanupArea::downloads, "downloads", 1, "Downloads & Large Files", "Downloaded files that may no longer be needed",
     "arrow.down.circle"},
    {CleanupArea::apps, "apps", 2, "Apps & App Data", "Installers and app-owned data", "square.grid.2x2"},
    {CleanupArea::developer, "developer", 3, "Coding Tools", "Files created by coding tools", "hammer"},
    {CleanupArea::devices, "devices", 4, "Devices & Backups", "Backups and downloaded device updates", "externaldrive"},
    {CleanupArea::system, "system", 5, "Managed by Apps or macOS", "Shown for awareness and never removed here",
     "gearshape.2"},
}};

[[nodiscard]] std::string_view identifier(CleanupArea area);
[[nodiscard]] int rawValue(CleanupArea area);
[[nodiscard]] std::string_view title(CleanupArea area);
[[nodiscard]] std::string_view subtitle(CleanupArea area);
[[nodiscard]] std::string_view symbolName(CleanupArea area);
[[nodiscard]] std::optional<CleanupArea> cleanupAreaFromRawValue(int rawValue);

/// What the user may do with a finding in the cleanup window.
enum class CleanupRemovalDisposition {
    directTrash,          ///< may be selected and moved to the Trash
    reviewOnly,           ///< may only be revealed in Finder
    protectedFromRemoval, ///< shown for information; neither selected nor revealed for removal
};

/// Its name for programs.
[[nodiscard]] std::string_view identifier(CleanupRemovalDisposition disposition);
/// The text of its badge.
[[nodiscard]] std::string_view title(CleanupRemovalDisposition disposition);

/// Why a candidate was found.
enum class CleanupCategory {
    cache,
    log,
    crashReport,
    installer,
    archive,
    interruptedDownload,
    largeDownload,
    macOSInstaller,
    orphan,
    developerBuild,
    developerCache,
    developerArchive,
    deviceBackup,
    deviceSoftware,
};

/// The properties of a category. `rawValue` is also its displayed name, `identifier` its name for programs.
struct CleanupCategoryRow {
    CleanupCategory value;
    std::string_view identifier;
    std::string_view rawValue;
    CleanupArea area;
    std::string_view symbolName;
    CleanupRemovalDisposition removalDisposition;
};

/// Every category, in the order of the enumeration. None belongs to `CleanupArea::system`, which only explains.
inline constexpr std::array<CleanupCategoryRow, 14> allCleanupCategories{{
    {CleanupCategory::cache, "cache", "Temporary App Files", CleanupArea::quickWins, "shippingbox",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::log, "log", "Old Log Files", CleanupArea::quickWins, "doc.text",
     CleanupRemovalDisposition::directTrash},
    {CleanupCategory::crashReport, "crashReport", "Old Crash Reports", CleanupArea::quickWins, "waveform.path.ecg",
     CleanupRemovalDisposition::directTrash},
    {CleanupCategory::installer, "installer", "Downloaded App Installers", CleanupArea::downloads,
     "shippingbox.and.arrow.backward", CleanupRemovalDisposition::directTrash},
    {CleanupCategory::archive, "archive", "Compressed Files", CleanupArea::downloads, "archivebox",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::interruptedDownload, "interruptedDownload", "Partial Downloads", CleanupArea::downloads,
     "arrow.down.circle.dotted", CleanupRemovalDisposition::directTrash},
    {CleanupCategory::largeDownload, "largeDownload", "Large Downloads", CleanupArea::downloads, "doc.badge.ellipsis",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::macOSInstaller, "macOSInstaller", "macOS Installer Apps", CleanupArea::apps, "macbook.and.iphone",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::orphan, "orphan", "Old Window Data", CleanupArea::apps, "puzzlepiece.extension",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::developerBuild, "developerBuild", "Rebuildable Project Data", CleanupArea::developer, "hammer",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::developerCache, "developerCache", "Coding-Tool Caches", CleanupArea::developer, "terminal",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::developerArchive, "developerArchive", "Xcode Archives", CleanupArea::developer, "archivebox",
     CleanupRemovalDisposition::protectedFromRemoval},
    {CleanupCategory::deviceBackup, "deviceBackup", "iPhone and iPad Backups", CleanupArea::devices,
     "externaldrive.badge.timemachine", CleanupRemovalDisposition::protectedFromRemoval},
    {CleanupCategory::deviceSoftware, "deviceSoftware", "Device Update Files", CleanupArea::devices,
     "iphone.and.arrow.forward", CleanupRemovalDisposition::reviewOnly},
}};

[[nodiscard]] std::string_view identifier(CleanupCategory category);
[[nodiscard]] std::string_view rawValue(CleanupCategory category);
[[nodiscard]] CleanupArea area(CleanupCategory category);
[[nodiscard]] std::string_view symbolName(CleanupCategory category);
[[nodiscard]] CleanupRemovalDisposition removalDisposition(CleanupCategory category);
[[nodiscard]] std::optional<CleanupCategory> cleanupCategoryFromRawValue(std::string_view rawValue);

} // namespace vantry
