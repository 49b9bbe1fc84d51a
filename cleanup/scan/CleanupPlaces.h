#pragma once

#include "cleanup/model/CleanupCategory.h"
#include "cleanup/scan/ScanEnvironment.h"

#include <chrono>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantry::CleanupScanner {

/// The folders in which the items of a category lie, in the order in which they are looked at; candidates that may be
/// moved lie directly in one of them. Touches no disk.
[[nodiscard]] std::vector<std::filesystem::path> approvedRoots(CleanupCategory category,
                                                               const ScanEnvironment& environment);

/// The lower-case extensions by which the files of a category are told; none for a category that is not told by them.
[[nodiscard]] std::span<const std::string_view> matchedExtensions(CleanupCategory category);

/// How long an item has not been modified before it is offered; 0 for a category without an age.
[[nodiscard]] std::chrono::days minimumAge(CleanupCategory category);

/// What follows the last dot of the name, in lower case (ASCII); nothing for a name without one, or with one only at
/// its begin or end.
[[nodiscard]] std::string lowercaseExtension(const std::filesystem::path& path);

/// `text` with the letters of ASCII in lower case.
[[nodiscard]] std::string lowercase(std::string text);

} // namespace vantry::CleanupScanner
