#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vantry::CleanupScanner {

/// Where applications are looked for.
struct ApplicationPlaces {
    std::vector<std::filesystem::path> folders; ///< of applications; one that is missing holds none
    std::filesystem::path system;               ///< the folder of the system's own volumes

    bool operator==(const ApplicationPlaces&) const = default;
};

/// Called for each folder visited, with the identifier of the bundle that it is, if it is one that says so. False ends
/// the search.
using BundleTelling = std::function<bool(const std::optional<std::string>& identifier)>;

/// Looks for applications in `places`, at any depth and hidden ones too, and for the bundles inside them, but not in
/// their resources and data. Reads nothing but folders and regular files called Info.plist inside bundles. A link in
/// a folder of applications is followed into the system's volumes only; one in a bundle also within the outermost
/// bundle. False as soon as something that is or may hold a bundle cannot be looked at; a link that leads nowhere is
/// no such thing, nor is an information file that is not a property list. False as well when `tell` ended it. Blocking,
/// as long as a file system does not answer: for a worker.
[[nodiscard]] bool searchBundles(const ApplicationPlaces& places, const BundleTelling& tell);

} // namespace vantry::CleanupScanner
