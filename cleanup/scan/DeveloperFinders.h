#pragma once

#include "cleanup/scan/ScanContext.h"

#include <vector>

namespace vantry::CleanupScanner {

/// Xcode archives and device support, rebuildable project data and the caches of coding tools, in this order.
[[nodiscard]] std::vector<CleanupCandidate> developerCandidates(ScanContext& context);

/// Whether an entry of the applications folder is the application that installs macOS.
[[nodiscard]] bool isMacOSInstaller(const std::filesystem::path& application);

/// The applications that install macOS, whatever their age and size. One that is a link is left out.
[[nodiscard]] std::vector<CleanupCandidate> macOSInstallers(ScanContext& context);

} // namespace vantry::CleanupScanner
