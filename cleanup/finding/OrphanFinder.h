#pragma once

#include "cleanup/finding/ScanContext.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Bundle identifiers in lower case: the system compares them without case.
using BundleIdentifiers = std::set<std::string>;

/// The identifiers of installed applications and of the bundles inside them, see BundleSearch.h. Searches the two
/// applications folders of the environment and the one in the home folder. Absent, with the category limited, if
/// anything could not be read: a bundle that was missed would turn its data into an orphan.
[[nodiscard]] std::optional<BundleIdentifiers> installedAndEmbeddedBundleIdentifiers(ScanContext& context);

/// Saved window state of any age and size whose bundle is not installed, not embedded in another, not running and not
/// in the system's register of applications.
[[nodiscard]] std::vector<CleanupCandidate> orphanedAppData(ScanContext& context,
                                                            std::span<const std::string> runningBundleIdentifiers);

} // namespace vantry::CleanupScanner
