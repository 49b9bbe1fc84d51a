#pragma once

#include "base/Deadline.h"
#include "cleanup/scan/BundleSearch.h"
#include "cleanup/scan/DirectoryMetrics.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// What stands directly in a folder. Without `complete` there is nothing.
struct ShallowChildren {
    std::vector<std::filesystem::path> urls;
    bool complete = false;

    bool operator==(const ShallowChildren&) const = default;
};

/// The texts found in property lists, one element for each file asked for, absent for one that could not be read.
struct PropertyListTexts {
    std::vector<std::optional<std::map<std::string, std::string>>> texts;
    bool complete = false; ///< there was an answer about every file: a list or that it is none

    bool operator==(const PropertyListTexts&) const = default;
};

/// What a scan has done for it in bounded time, whatever a file system does. Blocking; one thread, the scan's own.
class ScanWorkers {
public:
    virtual ~ScanWorkers() = default;

    /// Measures `folder`, for half a second at most.
    [[nodiscard]] virtual DirectoryMetrics directoryMetrics(const std::filesystem::path& folder, Deadline deadline) = 0;
    /// Measures `folder` and each folder directly in it, for half a second at most in all. What there was no time for
    /// is left out.
    [[nodiscard]] virtual ChildrenMetrics childrenMetrics(const std::filesystem::path& folder, Deadline deadline) = 0;
    /// The visible entries of `folder`, listed in half a second at most. A link to a folder is refused.
    [[nodiscard]] virtual ShallowChildren shallowChildren(const std::filesystem::path& folder, Deadline deadline) = 0;
    /// The texts under `keys` of the outermost dictionary of each file.
    [[nodiscard]] virtual PropertyListTexts propertyListTexts(std::span<const std::filesystem::path> files,
                                                              std::span<const std::string> keys, Deadline deadline) = 0;
    /// What the bundles in `places` call themselves. Absent when one of them may have been left out.
    [[nodiscard]] virtual std::optional<std::set<std::string>>
    bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places, Deadline deadline) = 0;
};

} // namespace vantry
