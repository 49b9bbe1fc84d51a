#pragma once

#include "cleanup/scan/ScanContext.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Identifiers of bundles, in lower case, since the system does not tell them apart by case.
using BundleIdentifiers = std::set<std::string>;

/// What installed applications and the bundles inside them call themselves, see BundleSearch.h. Applications are looked
/// for in both applications folders of the environment and in the one of the home folder. Absent, with the category
/// limited, when not all of them could be looked at: a bundle that was missed would make its data an orphan.
[[nodiscard]] std::optional<BundleIdentifiers> installedAndEmbeddedBundleIdentifiers(ScanContext& context);

/// Saved window state whose bundle is neither installed nor embedded nor running, nor known to the system's register of
/// applications, whatever its age and size.
[[nodiscard]] std::vector<CleanupCandidate> orphanedAppData(ScanContext& context,
                                                            std::span<const std::string> runningBundleIdentifiers);

} // namespace vantry::CleanupScanner
