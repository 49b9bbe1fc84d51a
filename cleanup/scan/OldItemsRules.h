#pragma once

#include "cleanup/scan/OldFileFinders.h"

#include <vector>

namespace vantry::CleanupScanner {

// The uses of the finders of old items, in the order in which a scan makes them. Touch no disk.

/// Folders of applications in the caches; those of coding tools have a finder of their own.
[[nodiscard]] OldItemsRule oldCachesRule(const ScanEnvironment& environment);

/// Logs, crash reports, installers, archives, partial downloads and large downloads.
[[nodiscard]] std::vector<OldItemsRule> oldFilesRules(const ScanEnvironment& environment);

/// The large downloads: what is no installer, no archive and no partial download by its extension.
[[nodiscard]] OldItemsRule largeDownloadsRule(const ScanEnvironment& environment);

/// Groups of Xcode archives, and versions of device support.
[[nodiscard]] std::vector<OldItemsRule> developerArchiveRules(const ScanEnvironment& environment);

/// Downloaded updates of devices, one rule a place.
[[nodiscard]] std::vector<OldItemsRule> deviceSoftwareRules(const ScanEnvironment& environment);

} // namespace vantry::CleanupScanner
