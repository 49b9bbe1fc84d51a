#pragma once

#include "cleanup/finding/ScanContext.h"

#include <vector>

namespace vantry::CleanupScanner {

/// Xcode archives and device support, rebuildable project data and the caches of coding tools, in this order.
[[nodiscard]] std::vector<CleanupCandidate> developerCandidates(ScanContext& context);

/// Whether an entry of the applications folder is a macOS installer.
[[nodiscard]] bool isMacOSInstaller(const std::filesystem::path& application);

/// The macOS installers, of any age and size. Links are left out.
[[nodiscard]] std::vector<CleanupCandidate> macOSInstallers(ScanContext& context);

} // namespace vantry::CleanupScanner
