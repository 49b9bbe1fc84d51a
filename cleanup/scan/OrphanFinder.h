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

/// What installed applications and the bundles inside them call themselves. Applications are looked for in both
/// applications folders of the environment and in the one of the home folder, also up to two plain folders deep; links
/// are followed. Absent, with the category limited, when not all of them could be looked at: a bundle that was missed
/// would make its data an orphan. An application with a list that is malformed claims nothing.
[[nodiscard]] std::optional<BundleIdentifiers> installedAndEmbeddedBundleIdentifiers(ScanContext& context);

/// Saved window state whose bundle is neither installed nor embedded nor running, whatever its age and size.
[[nodiscard]] std::vector<CleanupCandidate> orphanedAppData(ScanContext& context,
                                                            std::span<const std::string> runningBundleIdentifiers);

} // namespace vantry::CleanupScanner
