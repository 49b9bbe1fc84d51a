#pragma once

#include "cleanup/measuring/BundleSearch.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace vantry::CleanupScanner {

/// The flags that make a process of this executable a filesystem worker, when they are its first argument.
///   --directory-metrics-worker FOLDER SECONDS   writes a `DirectoryMetricsPayload` to standard output
///   --children-metrics-worker FOLDER SECONDS    writes a `ChildrenMetricsPayload` to standard output
///   --disk-usage-worker PATH SECONDS ENDING...  writes a `DirectoryMetricsPayload` with what `du -x` counts, of the
///                                               files with such endings if there are any, to standard output
///   --shallow-children-worker FOLDER FILE       writes a `ShallowChildrenPayload` to FILE, which becomes 0600
///   --property-list-worker COUNT KEY... FILE... writes a `PropertyListPayload` for each FILE to standard output, with
///                                               the texts under the COUNT keys, each as soon as the file is read
///   --bundle-identifiers-worker SYSTEM FOLDER... writes what the bundles in each FOLDER of applications call
///                                               themselves to standard output, see BundleIdentifiers.h
inline constexpr const char* directoryMetricsFlag = "--directory-metrics-worker";
inline constexpr const char* childrenMetricsFlag = "--children-metrics-worker";
inline constexpr const char* diskUsageFlag = "--disk-usage-worker";
inline constexpr const char* shallowChildrenFlag = "--shallow-children-worker";
inline constexpr const char* propertyListFlag = "--property-list-worker";
inline constexpr const char* bundleIdentifiersFlag = "--bundle-identifiers-worker";

struct MeasuringJob {
    std::string folder;
    std::chrono::nanoseconds budget{}; ///< at most 3 s

    bool operator==(const MeasuringJob&) const = default;
};

struct MeasuringChildrenJob {
    std::string folder;
    std::chrono::nanoseconds budget{}; ///< as above

    bool operator==(const MeasuringChildrenJob&) const = default;
};

struct DiskUsageJob {
    std::string path;
    std::chrono::nanoseconds budget{}; ///< as above
    std::vector<std::string> endings;

    bool operator==(const DiskUsageJob&) const = default;
};

struct ListingJob {
    std::string folder;
    std::string outputFile;

    bool operator==(const ListingJob&) const = default;
};

struct PropertyListJob {
    std::vector<std::string> keys;
    std::vector<std::string> files;

    bool operator==(const PropertyListJob&) const = default;
};

struct BundleIdentifiersJob {
    ApplicationPlaces places;

    bool operator==(const BundleIdentifiersJob&) const = default;
};

/// The worker's job. Empty if the number of arguments is wrong, if SECONDS is not a plain decimal number above 0, with
/// a point in every locale, or if COUNT is not a plain number.
using WorkerJob = std::variant<std::monostate, MeasuringJob, MeasuringChildrenJob, DiskUsageJob, ListingJob,
                               PropertyListJob, BundleIdentifiersJob>;

/// Absent unless the first of `arguments`, which are the process's without its name, is one of the flags.
[[nodiscard]] std::optional<WorkerJob> workerJob(std::span<const std::string> arguments);

} // namespace vantry::CleanupScanner
