#include "cleanup/measuring/WorkerArguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>
#include <string_view>
#include <system_error>

namespace vantry::CleanupScanner {

namespace {

constexpr double longestBudgetSeconds = 3;

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

WorkerJob propertyListJob(std::span<const std::string> arguments) {
    std::size_t count = 0;
    if (arguments.empty())
        return {};
    const auto* end = arguments[0].data() + arguments[0].size();
    const auto parsed = std::from_chars(arguments[0].data(), end, count);
    const auto rest = arguments.subspan(1);
    if (parsed.ec != std::errc() || parsed.ptr != end || count > rest.size())
        return {};
    const auto keys = rest.first(count);
    const auto files = rest.subspan(count);
    return PropertyListJob{{keys.begin(), keys.end()}, {files.begin(), files.end()}};
}

WorkerJob bundleIdentifiersJob(std::span<const std::string> arguments) {
    if (arguments.size() < 2)
        return {};
    const auto folders = arguments.subspan(1);
    return BundleIdentifiersJob{{.folders = {folders.begin(), folders.end()}, .system = arguments[0]}};
}

} // namespace

std::optional<WorkerJob> workerJob(std::span<const std::string> arguments) {
    if (!arguments.empty() && arguments[0] == propertyListFlag)
        return propertyListJob(arguments.subspan(1));
    if (!arguments.empty() && arguments[0] == bundleIdentifiersFlag)
        return bundleIdentifiersJob(arguments.subspan(1));
    if (arguments.empty() || (arguments[0] != directoryMetricsFlag && arguments[0] != childrenMetricsFlag &&
                              arguments[0] != diskUsageFlag && arguments[0] != shallowChildrenFlag))
        return std::nullopt;
    if (arguments.size() < 3 || (arguments.size() > 3 && arguments[0] != diskUsageFlag))
        return WorkerJob();
    if (arguments[0] == shallowChildrenFlag)
        return ListingJob{arguments[1], arguments[2]};
    const auto seconds = positiveSeconds(arguments[2]);
    if (!seconds)
        return WorkerJob();
    const auto budget = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(std::min(*seconds, longestBudgetSeconds)));
    if (arguments[0] == childrenMetricsFlag)
        return MeasuringChildrenJob{arguments[1], budget};
    if (arguments[0] == diskUsageFlag)
        return DiskUsageJob{arguments[1], budget, {arguments.begin() + 3, arguments.end()}};
    return MeasuringJob{arguments[1], budget};
}

} // namespace vantry::CleanupScanner
