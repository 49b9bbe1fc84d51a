#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace vantry::CleanupScanner {

/// The flags that make a process of this executable a filesystem worker, when they are its first argument.
///   --directory-metrics-worker FOLDER SECONDS   writes a `DirectoryMetricsPayload` to standard output
///   --shallow-children-worker FOLDER FILE       writes a `ShallowChildrenPayload` to FILE, which becomes 0600
inline constexpr const char* directoryMetricsFlag = "--directory-metrics-worker";
inline constexpr const char* shallowChildrenFlag = "--shallow-children-worker";

struct MeasuringJob {
    std::string folder;
    std::chrono::nanoseconds budget{}; ///< 3 s at most

    bool operator==(const MeasuringJob&) const = default;
};

struct ListingJob {
    std::string folder;
    std::string outputFile;

    bool operator==(const ListingJob&) const = default;
};

/// What a worker is told to do; nothing when its arguments are wrong in number or SECONDS is no plain decimal number
/// above 0, with a point in every locale.
using WorkerJob = std::variant<std::monostate, MeasuringJob, ListingJob>;

/// Absent unless the first of `arguments`, the process's without its name, is one of the flags.
[[nodiscard]] std::optional<WorkerJob> workerJob(std::span<const std::string> arguments);

} // namespace vantry::CleanupScanner
