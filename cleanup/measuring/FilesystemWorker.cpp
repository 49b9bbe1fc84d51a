#include "cleanup/measuring/FilesystemWorker.h"

#include "base/UniqueFd.h"
#include "base/WriteAll.h"
#include "cleanup/measuring/BundleIdentifiers.h"
#include "cleanup/measuring/DirectoryMetrics.h"
#include "cleanup/measuring/DiskUsage.h"
#include "cleanup/measuring/PropertyListFile.h"
#include "cleanup/measuring/WorkerArguments.h"
#include "cleanup/measuring/WorkerPayload.h"
#include "platform/DirectoryWalk.h"
#include "platform/Sandbox.h"

#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <variant>

namespace vantry::CleanupScanner {

namespace {

void perform(const std::monostate& /*job*/) {}

DirectoryMetricsPayload payloadOf(const DirectoryMetrics& metrics) {
    DirectoryMetricsPayload payload{.size = metrics.size, .complete = metrics.complete};
    if (metrics.newestModificationDate)
        payload.newestModificationTime = secondsSince1970(*metrics.newestModificationDate);
    return payload;
}

void perform(const MeasuringJob& job) {
    const auto deadline = deadlineIn(job.budget);
    std::ignore = giveUpChangingFiles();
    std::ignore = writeAll(STDOUT_FILENO, encoded(payloadOf(directoryMetricsInProcess(job.folder, deadline))));
}

void perform(const MeasuringChildrenJob& job) {
    const auto deadline = deadlineIn(job.budget);
    std::ignore = giveUpChangingFiles();
    const auto metrics = childrenMetricsInProcess(job.folder, deadline);
    ChildrenMetricsPayload payload{.children = {}, .whole = payloadOf(metrics.whole)};
    for (const auto& [name, child] : metrics.children)
        payload.children.emplace(name, payloadOf(child));
    std::ignore = writeAll(STDOUT_FILENO, encoded(payload));
}

void perform(const DiskUsageJob& job) {
    constexpr std::size_t memory = 256 << 20; // bytes, for a folder with a million names
    const auto deadline = deadlineIn(job.budget);
    std::ignore = giveUpChangingFiles();
    std::ignore = limitMemory(memory);
    std::ignore = writeAll(STDOUT_FILENO, encoded(payloadOf(diskUsageInProcess(job.path, job.endings, deadline))));
}

// Creates the file, or takes an empty one that belongs to this user. Never overwrites anything, and nobody else can
// read the names.
UniqueFd openOutput(const std::string& path) {
    UniqueFd file(open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat facts = {};
    if (file &&
        (fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size != 0 || facts.st_uid != geteuid()))
        file.reset();
    return file;
}

void perform(const ListingJob& job) {
    const UniqueFd output = openOutput(job.outputFile);
    if (!output)
        return;
    std::ignore = giveUpChangingFiles();
    auto names = visibleNames(job.folder);
    ShallowChildrenPayload payload{.complete = names.has_value()};
    if (names)
        payload.names = std::move(*names);
    if (writeAll(output.get(), encoded(payload)) != 0 || fchmod(output.get(), 0600) != 0)
        std::ignore = ftruncate(output.get(), 0);
}

void perform(const PropertyListJob& job) {
    constexpr std::size_t memory = 64 << 20;
    std::ignore = giveUpChangingFiles();
    std::ignore = limitMemory(memory);
    for (const auto& file : job.files)
        if (writeAll(STDOUT_FILENO, encoded(textsOfPropertyListFile(file, job.keys))) != 0)
            return;
}

void perform(const BundleIdentifiersJob& job) {
    constexpr std::size_t memory = 256 << 20; // bytes, for the names of folders, which may be hostile
    std::ignore = giveUpChangingFiles();
    std::ignore = limitMemory(memory);
    writeBundleIdentifiers(job.places, [](std::string_view lines) { return writeAll(STDOUT_FILENO, lines) == 0; });
}

} // namespace

bool runFilesystemWorkerIfRequested(std::span<const std::string> arguments) {
    const auto job = workerJob(arguments);
    if (!job)
        return false;
    std::visit([](const auto& known) { perform(known); }, *job);
    return true;
}

} // namespace vantry::CleanupScanner
