#include "cleanup/scan/FilesystemWorker.h"

#include "base/UniqueFd.h"
#include "cleanup/scan/DirectoryMetrics.h"
#include "cleanup/scan/WorkerPayload.h"
#include "platform/DirectoryWalk.h"
#include "platform/WriteProtection.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <fmt/format.h>
#include <locale>
#include <optional>
#include <sstream>
#include <string_view>
#include <sys/stat.h>

namespace vantry::CleanupScanner {

namespace {

constexpr double longestBudgetSeconds = 3;

// A plain decimal number above 0, whatever the locale.
std::optional<double> positiveSeconds(const std::string& text) {
    const bool plain = std::ranges::all_of(text, [](char character) {
        return std::string_view("0123456789.eE+-").find(character) != std::string_view::npos;
    });
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double seconds = 0;
    if (!plain || !(stream >> seconds) || stream.peek() != std::istringstream::traits_type::eof())
        return std::nullopt;
    return std::isfinite(seconds) && seconds > 0 ? std::optional(seconds) : std::nullopt;
}

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(fd, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return false;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

void measure(const std::string& folder, const std::string& budget) {
    const auto seconds = positiveSeconds(budget);
    if (!seconds)
        return;
    const std::chrono::duration<double> duration(std::min(*seconds, longestBudgetSeconds));
    const auto deadline = deadlineIn(std::chrono::duration_cast<std::chrono::nanoseconds>(duration));
    std::ignore = giveUpChangingFiles();
    const auto metrics = directoryMetricsInProcess(folder, deadline);
    DirectoryMetricsPayload payload{.size = metrics.size, .complete = metrics.complete};
    if (metrics.newestModificationDate)
        payload.newestModificationTime = secondsSince1970(*metrics.newestModificationDate);
    writeAll(STDOUT_FILENO, encoded(payload));
}

// A new file, or an empty one that was made for the purpose: nothing is ever written over.
UniqueFd openOutput(const std::string& path) {
    UniqueFd file(open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat facts = {};
    if (file && (fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size != 0))
        file.reset();
    return file;
}

void list(const std::string& folder, const std::string& outputPath) {
    const UniqueFd output = openOutput(outputPath);
    if (!output)
        return;
    std::ignore = giveUpChangingFiles();
    auto names = visibleNames(folder);
    ShallowChildrenPayload payload{.complete = names.has_value()};
    if (names)
        payload.names = std::move(*names);
    if (!writeAll(output.get(), encoded(payload)) || fchmod(output.get(), 0600) != 0)
        std::ignore = ftruncate(output.get(), 0);
}

} // namespace

bool runFilesystemWorkerIfRequested(std::span<const std::string> arguments) {
    if (arguments.empty() || (arguments[0] != directoryMetricsFlag && arguments[0] != shallowChildrenFlag))
        return false;
    if (arguments.size() == 3)
        arguments[0] == directoryMetricsFlag ? measure(arguments[1], arguments[2]) : list(arguments[1], arguments[2]);
    return true;
}

} // namespace vantry::CleanupScanner
