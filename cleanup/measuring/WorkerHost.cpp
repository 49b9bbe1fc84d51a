#include "cleanup/measuring/WorkerHost.h"

#include "base/AtomicFile.h"
#include "base/Format.h"
#include "base/UniqueFd.h"
#include "base/Uuid.h"
#include "cleanup/measuring/BundleIdentifiers.h"
#include "cleanup/measuring/PropertyListReader.h"
#include "cleanup/measuring/WorkerArguments.h"
#include "cleanup/measuring/WorkerPayload.h"
#include "platform/ItemFacts.h"
#include "platform/SupervisedChild.h"
#include "platform/UserSession.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr std::chrono::milliseconds longestJob{500};
constexpr std::chrono::seconds longestDiskUsage{2}; // nobody waits for it
constexpr std::chrono::milliseconds measuringGrace{200};
constexpr std::size_t largestOutput = 64 << 20;

DirectoryMetrics metricsOf(const DirectoryMetricsPayload& payload) {
    DirectoryMetrics metrics{.size = payload.size, .complete = payload.complete};
    if (payload.newestModificationTime)
        metrics.newestModificationDate = timeFromSecondsSince1970(*payload.newestModificationTime);
    return metrics;
}

/// An empty file for a worker's list, private to this user, removed by the destructor. A signal that would end this
/// process is held back on this thread until then.
class TemporaryList {
public:
    TemporaryList(const std::filesystem::path& folder, StopSwitch::Work work)
        : work_(std::move(work)),
          path_(folder / ("ombrel-children-" + randomUuid() + ".json")) {
        sigset_t requests;
        sigemptyset(&requests);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&requests, signal);
        pthread_sigmask(SIG_BLOCK, &requests, &before_);
        const UniqueFd file(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        isMade_ = static_cast<bool>(file);
        fchmod(file.get(), 0600); // whatever the umask
    }
    TemporaryList(const TemporaryList&) = delete;
    TemporaryList& operator=(const TemporaryList&) = delete;
    ~TemporaryList() {
        if (isMade_)
            unlink(path_.c_str());
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

    [[nodiscard]] bool isMade() const { return isMade_; }
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    StopSwitch::Work work_; ///< ends once the file is removed
    std::filesystem::path path_;
    sigset_t before_{};
    bool isMade_ = false;
};

} // namespace

Result<WorkerHost::Environment> WorkerHost::currentEnvironment() {
    auto executable = ownExecutable();
    if (!executable)
        return std::unexpected(executable.error());
    // The temporary folder is checked when it is used: measuring does not need it.
    return Environment{.executable = std::move(*executable), .temporaryFolder = temporaryFolder()};
}

WorkerHost::WorkerHost(Environment environment) : environment_(std::move(environment)) {}

DirectoryMetrics WorkerHost::directoryMetrics(const std::filesystem::path& folder, Deadline deadline) {
    if (quickItemKind(folder) == ItemKind::regularFile)
        return CleanupScanner::directoryMetricsInProcess(folder, deadline);
    const auto output = measured(CleanupScanner::directoryMetricsFlag, folder, deadline, longestJob);
    const auto payload = output ? decodedDirectoryMetrics(*output) : std::nullopt;
    return payload ? metricsOf(*payload) : DirectoryMetrics{};
}

ChildrenMetrics WorkerHost::childrenMetrics(const std::filesystem::path& folder, Deadline deadline) {
    const auto output = measured(CleanupScanner::childrenMetricsFlag, folder, deadline, longestJob);
    const auto payload = output ? decodedChildrenMetrics(*output) : std::nullopt;
    ChildrenMetrics metrics;
    if (!payload)
        return metrics;
    for (const auto& [name, child] : payload->children)
        metrics.children.emplace(name, metricsOf(child));
    metrics.whole = metricsOf(payload->whole);
    return metrics;
}

DirectoryMetrics WorkerHost::diskUsage(const std::filesystem::path& path, std::span<const std::string> endings,
                                       Deadline deadline) {
    const auto output = measured(CleanupScanner::diskUsageFlag, path, deadline, longestDiskUsage, endings);
    const auto payload = output ? decodedDirectoryMetrics(*output) : std::nullopt;
    return payload ? metricsOf(*payload) : DirectoryMetrics{};
}

ShallowChildren WorkerHost::shallowChildren(const std::filesystem::path& folder, Deadline deadline) {
    if (hasPassed(deadline))
        return {};
    // A worker would refuse everything but a folder as well.
    if (const auto kind = quickItemKind(folder); kind != ItemKind::folder && kind != ItemKind::unknown)
        return {};
    auto work = StopSwitch::beginWork(environment_.stopSwitch);
    if (!work)
        return {};
    const TemporaryList list(environment_.temporaryFolder, std::move(*work));
    if (!list.isMade() || !run({CleanupScanner::shallowChildrenFlag, folder.native(), list.path().native()},
                               ChildOutput::nullDevice, std::min(deadline, deadlineIn(longestJob))))
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
    return CleanupScanner::readPropertyLists(environment_.executable, files, keys, deadline, environment_.stopSwitch);
}

std::optional<std::set<std::string>> WorkerHost::bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places,
                                                                   Deadline deadline) {
    return CleanupScanner::readBundleIdentifiers(environment_.executable, places, deadline, environment_.stopSwitch);
}

std::optional<std::string> WorkerHost::measured(const char* flag, const std::filesystem::path& folder,
                                                Deadline deadline, std::chrono::nanoseconds longest,
                                                std::span<const std::string> more) const {
    if (hasPassed(deadline))
        return std::nullopt;
    const auto budget = std::min<std::chrono::nanoseconds>(deadline - std::chrono::steady_clock::now(), longest);
    std::vector<std::string> arguments{
        flag, folder.native(), formatted("{:.6f}", std::max(std::chrono::duration<double>(budget).count(), 1e-6))};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments, ChildOutput::pipe, deadlineIn(budget + measuringGrace));
}

std::optional<std::string> WorkerHost::run(const std::vector<std::string>& arguments, ChildOutput output,
                                           Deadline deadline) const {
    auto worker = SupervisedChild::start(environment_.executable, arguments, output, environment_.stopSwitch);
    return worker ? worker->outputToEnd(largestOutput, deadline) : std::nullopt;
}

} // namespace vantry
