#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Where to search for applications.
struct ApplicationPlaces {
    std::vector<std::filesystem::path> folders; ///< applications folders; a missing one counts as empty
    std::filesystem::path system;               ///< the folder that holds the system's own volumes

    bool operator==(const ApplicationPlaces&) const = default;
};

/// Called for each visited folder, with its identifier if it is a bundle that has one. Returning false ends the search.
using BundleTelling = std::function<bool(const std::optional<std::string>& identifier)>;

/// Searches `places` for applications, at any depth, hidden ones included, and for the bundles inside them, but not in
/// their resources and data. Opens only folders, and regular files called Info.plist inside bundles. A link in an
/// applications folder is followed into the system's volumes only; a link in a bundle also within the outermost bundle.
/// Returns false as soon as anything that may hold a bundle cannot be read, or when `tell` ended the search; broken
/// links and information files that are not property lists do not count. Blocks for as long as a file system does not
/// answer: call it in a worker.
[[nodiscard]] bool searchBundles(const ApplicationPlaces& places, const BundleTelling& tell);

} // namespace vantry::CleanupScanner
