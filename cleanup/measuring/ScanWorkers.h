#pragma once

#include "base/Deadline.h"
#include "cleanup/measuring/BundleSearch.h"
#include "cleanup/measuring/DirectoryMetrics.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// The entries of a folder; empty unless `complete`.
struct ShallowChildren {
    std::vector<std::filesystem::path> urls;
    bool complete = false;

    bool operator==(const ShallowChildren&) const = default;
};

/// The texts of property lists, one element for each file, absent for a file that could not be read.
struct PropertyListTexts {
    std::vector<std::optional<std::map<std::string, std::string>>> texts;
    bool complete = false; ///< every file was read, or found not to be a list

    bool operator==(const PropertyListTexts&) const = default;
};

/// What a scan leaves to workers, so that its time is bounded whatever a file system does. Blocking; one thread, the
/// scan's own.
class ScanWorkers {
public:
    virtual ~ScanWorkers() = default;

    /// Measures `folder` for at most half a second.
    [[nodiscard]] virtual DirectoryMetrics directoryMetrics(const std::filesystem::path& folder, Deadline deadline) = 0;
    /// Measures `folder` and each folder directly in it, for at most half a second in all. Folders for which there was
    /// no time are left out.
    [[nodiscard]] virtual ChildrenMetrics childrenMetrics(const std::filesystem::path& folder, Deadline deadline) = 0;
    /// What `du -x` counts at `path`, for at most two seconds; see DiskUsage.h.
    [[nodiscard]] virtual DirectoryMetrics diskUsage(const std::filesystem::path& path,
                                                     std::span<const std::string> endings, Deadline deadline) = 0;
    /// The visible entries of `folder`, listed within half a second. A link to a folder is refused.
    [[nodiscard]] virtual ShallowChildren shallowChildren(const std::filesystem::path& folder, Deadline deadline) = 0;
    /// The texts under `keys` of the outermost dictionary of each file.
    [[nodiscard]] virtual PropertyListTexts propertyListTexts(std::span<const std::filesystem::path> files,
                                                              std::span<const std::string> keys, Deadline deadline) = 0;
    /// The identifiers of the bundles in `places`; absent if one may be missing.
    [[nodiscard]] virtual std::optional<std::set<std::string>>
    bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places, Deadline deadline) = 0;
};

} // namespace vantry
