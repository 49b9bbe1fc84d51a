#pragma once

#include <filesystem>

namespace vantry::CleanupScanner {

// Blocking; any thread. A path's bytes need not be UTF-8.

/// Whether `path` is absolute and none of its components, the last included, is a link or missing.
[[nodiscard]] bool pathHasNoSymbolicLinkComponents(const std::filesystem::path& path);

/// Whether `candidate` lies below `root`, judging by the paths alone.
[[nodiscard]] bool liesBelow(const std::filesystem::path& candidate, const std::filesystem::path& root);

/// The same, and `candidate` is not a link.
[[nodiscard]] bool isSafeCandidate(const std::filesystem::path& candidate, const std::filesystem::path& root);

/// Whether a component of the absolute `path`, the last included, is a link. A component that cannot be examined does
/// not count.
[[nodiscard]] bool leadsThroughLink(const std::filesystem::path& path);

/// Whether `path` itself is a link; a trailing slash changes nothing. False if it cannot be examined.
[[nodiscard]] bool isSymbolicLink(const std::filesystem::path& path);

} // namespace vantry::CleanupScanner
