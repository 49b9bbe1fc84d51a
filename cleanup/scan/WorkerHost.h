#pragma once

#include "base/Deadline.h"
#include "cleanup/scan/ScanWorkers.h"
#include "platform/ChildProcess.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// Starts filesystem workers, one at a time, and never waits for one without a bound: a worker that overruns is asked
/// to end, then killed, and one that survives even that, stuck in a hung file system, is left behind and reaped when it
/// ends. Every failure is an answer that is not complete. Blocking; one thread, the scan's own.
class WorkerHost : public ScanWorkers {
public:
    /// What is started, and where workers leave their lists.
    struct Environment {
        std::filesystem::path executable;
        std::filesystem::path temporaryFolder;
    };

    /// The running executable, and `$TMPDIR` or "/tmp" (on macOS the user's temporary folder).
    [[nodiscard]] static Result<Environment> currentEnvironment();

    explicit WorkerHost(Environment environment);
    WorkerHost(const WorkerHost&) = delete;
    WorkerHost& operator=(const WorkerHost&) = delete;
    ~WorkerHost() override;

    /// Measures `folder` in a worker, for half a second at most. A regular file is measured at once, without a worker.
    [[nodiscard]] DirectoryMetrics directoryMetrics(const std::filesystem::path& folder, Deadline deadline) override;
    /// Measures `folder` and each folder directly in it in one worker, for half a second at most in all.
    [[nodiscard]] ChildrenMetrics childrenMetrics(const std::filesystem::path& folder, Deadline deadline) override;
    /// The visible entries of `folder`, listed by a worker in half a second at most. A link to a folder is refused.
    [[nodiscard]] ShallowChildren shallowChildren(const std::filesystem::path& folder, Deadline deadline) override;
    [[nodiscard]] PropertyListTexts propertyListTexts(std::span<const std::filesystem::path> files,
                                                      std::span<const std::string> keys, Deadline deadline) override;

    /// Workers that were left behind and have not ended yet.
    [[nodiscard]] std::size_t abandonedCount();

private:
    struct Finished {
        int exitStatus = 0;
        std::string output;
    };

    /// The output of a worker that measures `folder`; absent when it did not end well in time.
    [[nodiscard]] std::optional<std::string> measured(const char* flag, const std::filesystem::path& folder,
                                                      Deadline deadline);
    [[nodiscard]] std::optional<Finished> run(const std::vector<std::string>& arguments, ChildOutput output,
                                              Deadline deadline);
    void stopWorker(ChildProcess worker);
    void reapAbandoned();

    Environment environment_;
    std::vector<ChildProcess> abandoned_;
};

} // namespace vantry
