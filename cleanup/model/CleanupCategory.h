#pragma once

#include "cleanup/model/CleanupArea.h"
#include "cleanup/model/CleanupRemovalDisposition.h"

#include <array>
#include <optional>
#include <string_view>

namespace vantry {

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

/// What is fixed for a category. `rawValue` is also the name that is shown.
struct CleanupCategoryRow {
    CleanupCategory value;
    std::string_view rawValue;
    CleanupArea area;
    std::string_view symbolName;
    CleanupRemovalDisposition removalDisposition;
};

/// Every category, in the order of the enumeration. None is in `CleanupArea::system`, which only explains.
inline constexpr std::array<CleanupCategoryRow, 14> allCleanupCategories{{
    {CleanupCategory::cache, "Temporary App Files", CleanupArea::quickWins, "shippingbox",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::log, "Old Log Files", CleanupArea::quickWins, "doc.text", CleanupRemovalDisposition::directTrash},
    {CleanupCategory::crashReport, "Old Crash Reports", CleanupArea::quickWins, "waveform.path.ecg",
     CleanupRemovalDisposition::directTrash},
    {CleanupCategory::installer, "Downloaded App Installers", CleanupArea::downloads, "shippingbox.and.arrow.backward",
     CleanupRemovalDisposition::directTrash},
    {CleanupCategory::archive, "Compressed Files", CleanupArea::downloads, "archivebox",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::interruptedDownload, "Partial Downloads", CleanupArea::downloads, "arrow.down.circle.dotted",
     CleanupRemovalDisposition::directTrash},
    {CleanupCategory::largeDownload, "Large Downloads", CleanupArea::downloads, "doc.badge.ellipsis",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::macOSInstaller, "macOS Installer Apps", CleanupArea::apps, "macbook.and.iphone",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::orphan, "Old Window Data", CleanupArea::apps, "puzzlepiece.extension",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::developerBuild, "Rebuildable Project Data", CleanupArea::developer, "hammer",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::developerCache, "Coding-Tool Caches", CleanupArea::developer, "terminal",
     CleanupRemovalDisposition::reviewOnly},
    {CleanupCategory::developerArchive, "Xcode Archives", CleanupArea::developer, "archivebox",
     CleanupRemovalDisposition::protectedFromRemoval},
    {CleanupCategory::deviceBackup, "iPhone and iPad Backups", CleanupArea::devices, "externaldrive.badge.timemachine",
     CleanupRemovalDisposition::protectedFromRemoval},
    {CleanupCategory::deviceSoftware, "Device Update Files", CleanupArea::devices, "iphone.and.arrow.forward",
     CleanupRemovalDisposition::reviewOnly},
}};

[[nodiscard]] std::string_view rawValue(CleanupCategory category);
[[nodiscard]] CleanupArea area(CleanupCategory category);
[[nodiscard]] std::string_view symbolName(CleanupCategory category);
[[nodiscard]] CleanupRemovalDisposition removalDisposition(CleanupCategory category);
[[nodiscard]] std::optional<CleanupCategory> cleanupCategoryFromRawValue(std::string_view rawValue);

} // namespace vantry
