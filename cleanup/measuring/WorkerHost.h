#pragma once

#include "base/Deadline.h"
#include "cleanup/measuring/ScanWorkers.h"
#include "platform/ChildProcess.h"
#include "platform/StopSwitch.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace vantry {

/// Starts filesystem workers, one at a time, and never waits for one without a bound, see platform/SupervisedChild.h.
/// Every failure gives an incomplete answer. Blocking; one thread, the scan's own.
class WorkerHost : public ScanWorkers {
public:
    /// What to start, and where workers leave their lists.
    struct Environment {
        std::filesystem::path executable;
        std::filesystem::path temporaryFolder;
        std::shared_ptr<StopSwitch> stopSwitch = nullptr; ///< ends workers and prevents new ones
    };

    /// The running executable and the temporary folder, without a switch.
    [[nodiscard]] static Result<Environment> currentEnvironment();

    explicit WorkerHost(Environment environment);

    /// Measures `folder` in a worker for at most half a second. A regular file is measured directly, without a worker.
    [[nodiscard]] DirectoryMetrics directoryMetrics(const std::filesystem::path& folder, Deadline deadline) override;
    /// Measures `folder` and each folder directly in it in one worker, for at most half a second in all.
    [[nodiscard]] ChildrenMetrics childrenMetrics(const std::filesystem::path& folder, Deadline deadline) override;
    [[nodiscard]] DirectoryMetrics diskUsage(const std::filesystem::path& path, std::span<const std::string> endings,
                                             Deadline deadline) override;
    /// The visible entries of `folder`, listed by a worker within half a second. A link to a folder is refused.
    [[nodiscard]] ShallowChildren shallowChildren(const std::filesystem::path& folder, Deadline deadline) override;
    [[nodiscard]] PropertyListTexts propertyListTexts(std::span<const std::filesystem::path> files,
                                                      std::span<const std::string> keys, Deadline deadline) override;
    [[nodiscard]] std::optional<std::set<std::string>>
    bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places, Deadline deadline) override;

private:
    /// The output of a worker that measures `folder`; absent if it did not succeed in time.
    [[nodiscard]] std::optional<std::string> measured(const char* flag, const std::filesystem::path& folder,
                                                      Deadline deadline, std::chrono::nanoseconds longest,
                                                      std::span<const std::string> more = {}) const;
    /// The output of a worker; absent if it did not succeed in time.
    [[nodiscard]] std::optional<std::string> run(const std::vector<std::string>& arguments, ChildOutput output,
                                                 Deadline deadline) const;

    Environment environment_;
};

} // namespace vantry
