#include "cleanup/scan/WorkerHost.h"

#include "base/AtomicFile.h"
#include "base/Uuid.h"
#include "cleanup/scan/PropertyListReader.h"
#include "cleanup/scan/WorkerArguments.h"
#include "cleanup/scan/WorkerPayload.h"
#include "platform/ItemKind.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr std::chrono::milliseconds longestJob{500};
constexpr std::chrono::milliseconds measuringGrace{200};
constexpr std::chrono::milliseconds stopPatience{120}; // after SIGTERM, and again after SIGKILL
constexpr std::size_t largestOutput = 64 << 20;
constexpr int readsBetweenLooksAtTheClock = 16;

enum class ReadResult { more, end, tooMuch };

// Takes what the pipe holds right now. One that is filled as fast as it is read is too much when time is up.
ReadResult drain(int pipe, std::string& output, Deadline deadline) {
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): written by the call
    for (int reads = 1;; ++reads) {
        if (reads % readsBetweenLooksAtTheClock == 0 && hasPassed(deadline))
            return ReadResult::tooMuch;
        const ssize_t length = read(pipe, buffer.data(), buffer.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            return errno == EAGAIN ? ReadResult::more : ReadResult::end;
        if (length == 0)
            return ReadResult::end;
        if (output.size() + static_cast<std::size_t>(length) > largestOutput)
            return ReadResult::tooMuch;
        output.append(buffer.data(), static_cast<std::size_t>(length));
    }
}

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

bool endsWithin(ChildProcess& worker, std::chrono::milliseconds patience) {
    for (const auto deadline = deadlineIn(patience); !worker.exitStatus();) {
        pollfd ended{worker.exitDescriptor(), POLLIN, 0};
        if (poll(&ended, 1, millisecondsUntil(deadline)) == 0)
            return worker.exitStatus().has_value();
    }
    return true;
}

DirectoryMetrics metricsOf(const DirectoryMetricsPayload& payload) {
    DirectoryMetrics metrics{.size = payload.size, .complete = payload.complete};
    if (payload.newestModificationTime)
        metrics.newestModificationDate = timeFromSecondsSince1970(*payload.newestModificationTime);
    return metrics;
}

/// A name for a worker's list; what stands there is removed at the end, whatever happened. A request to end this
/// process that arrives at this thread waits until then.
class TemporaryList {
public:
    explicit TemporaryList(const std::filesystem::path& folder)
        : path_(folder / ("ombrel-children-" + randomUuid() + ".json")) {
        sigset_t requests;
        sigemptyset(&requests);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&requests, signal);
        pthread_sigmask(SIG_BLOCK, &requests, &before_);
    }
    TemporaryList(const TemporaryList&) = delete;
    TemporaryList& operator=(const TemporaryList&) = delete;
    ~TemporaryList() {
        unlink(path_.c_str());
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    sigset_t before_{};
};

} // namespace

Result<WorkerHost::Environment> WorkerHost::currentEnvironment() {
    auto executable = ownExecutable();
    if (!executable)
        return std::unexpected(executable.error());
    // Whether it is there is seen when it is used: measuring needs none.
    const char* variable = std::getenv("TMPDIR");
    std::filesystem::path folder = variable ? variable : "";
    return Environment{std::move(*executable), folder.is_absolute() ? std::move(folder) : "/tmp"};
}

WorkerHost::WorkerHost(Environment environment) : environment_(std::move(environment)) {}

WorkerHost::~WorkerHost() { reapAbandoned(); }

DirectoryMetrics WorkerHost::directoryMetrics(const std::filesystem::path& folder, Deadline deadline) {
    if (quickItemKind(folder) == ItemKind::regularFile)
        return CleanupScanner::directoryMetricsInProcess(folder, deadline);
    const auto output = measured(CleanupScanner::directoryMetricsFlag, folder, deadline);
    const auto payload = output ? decodedDirectoryMetrics(*output) : std::nullopt;
    return payload ? metricsOf(*payload) : DirectoryMetrics{};
}

ChildrenMetrics WorkerHost::childrenMetrics(const std::filesystem::path& folder, Deadline deadline) {
    const auto output = measured(CleanupScanner::childrenMetricsFlag, folder, deadline);
    const auto payload = output ? decodedChildrenMetrics(*output) : std::nullopt;
    ChildrenMetrics metrics;
    if (!payload)
        return metrics;
    for (const auto& [name, child] : payload->children)
        metrics.children.emplace(name, metricsOf(child));
    metrics.whole = metricsOf(payload->whole);
    return metrics;
}

ShallowChildren WorkerHost::shallowChildren(const std::filesystem::path& folder, Deadline deadline) {
    if (hasPassed(deadline))
        return {};
    // A worker refuses what is no folder, too.
    if (const auto kind = quickItemKind(folder); kind != ItemKind::folder && kind != ItemKind::unknown)
        return {};
    const TemporaryList list(environment_.temporaryFolder);
    const auto finished = run({CleanupScanner::shallowChildrenFlag, folder.native(), list.path().native()},
                              ChildOutput::nullDevice, std::min(deadline, deadlineIn(longestJob)));
    if (!finished || finished->exitStatus != 0)
        return {};
    const auto json = readSmallFile(list.path(), largestOutput);
    const auto payload = json ? decodedShallowChildren(*json) : std::nullopt;
    if (!payload)
        return {};
    ShallowChildren children{.complete = payload->complete};
    for (const auto& name : payload->names)
        children.urls.push_back(folder / name);
    return children;
}

PropertyListTexts WorkerHost::propertyListTexts(std::span<const std::filesystem::path> files,
                                                std::span<const std::string> keys, Deadline deadline) {
    reapAbandoned();
    return CleanupScanner::readPropertyLists(environment_.executable, files, keys, deadline,
                                             [this](ChildProcess worker) { stopWorker(std::move(worker)); });
}

std::optional<std::string> WorkerHost::measured(const char* flag, const std::filesystem::path& folder,
                                                Deadline deadline) {
    if (hasPassed(deadline))
        return std::nullopt;
    const auto budget = std::min<std::chrono::nanoseconds>(deadline - std::chrono::steady_clock::now(), longestJob);
    auto finished = run(
        {flag, folder.native(), fmt::format("{:.6f}", std::max(std::chrono::duration<double>(budget).count(), 1e-6))},
        ChildOutput::pipe, deadlineIn(budget + measuringGrace));
    if (!finished || finished->exitStatus != 0)
        return std::nullopt;
    return std::move(finished->output);
}

// Reads while the worker runs, since a pipe holds little, and waits for its end: one that closes its output and lives
// on is not finished. Absent when it could not be started, wrote too much or was not seen to end in time.
std::optional<WorkerHost::Finished> WorkerHost::run(const std::vector<std::string>& arguments, ChildOutput output,
                                                    Deadline deadline) {
    reapAbandoned();
    auto worker = ChildProcess::start(environment_.executable, arguments, output);
    if (!worker)
        return std::nullopt;
    Finished finished;
    bool reading = output == ChildOutput::pipe;
    for (;;) {
        const auto status = worker->exitStatus();
        if (reading)
            switch (drain(worker->output(), finished.output, deadline)) {
            case ReadResult::more: break;
            case ReadResult::end: reading = false; break;
            case ReadResult::tooMuch: stopWorker(std::move(*worker)); return std::nullopt;
            }
        if (status) {
            // What it wrote was in the pipe before it ended; whoever else holds the other end is not waited for.
            finished.exitStatus = *status;
            return finished;
        }
        if (hasPassed(deadline)) {
            stopWorker(std::move(*worker));
            return std::nullopt;
        }
        std::array<pollfd, 2> events{{{worker->exitDescriptor(), POLLIN, 0}, {worker->output(), POLLIN, 0}}};
        poll(events.data(), reading ? 2 : 1, millisecondsUntil(deadline));
    }
}

void WorkerHost::stopWorker(ChildProcess worker) {
    if (worker.exitStatus())
        return;
    worker.sendSignal(SIGTERM);
    if (endsWithin(worker, stopPatience))
        return;
    worker.sendSignal(SIGKILL);
    if (!endsWithin(worker, stopPatience))
        abandoned_.push_back(std::move(worker));
}

void WorkerHost::reapAbandoned() {
    std::erase_if(abandoned_, [](ChildProcess& worker) { return worker.exitStatus().has_value(); });
}

std::size_t WorkerHost::abandonedCount() {
    reapAbandoned();
    return abandoned_.size();
}

} // namespace vantry
