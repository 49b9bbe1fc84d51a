#include "cleanup/scan/WorkerArguments.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>
#include <string_view>

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

} // namespace

std::optional<WorkerJob> workerJob(std::span<const std::string> arguments) {
    if (arguments.empty() || (arguments[0] != directoryMetricsFlag && arguments[0] != shallowChildrenFlag))
        return std::nullopt;
    if (arguments.size() != 3)
        return WorkerJob();
    if (arguments[0] == shallowChildrenFlag)
        return ListingJob{arguments[1], arguments[2]};
    const auto seconds = positiveSeconds(arguments[2]);
    if (!seconds)
        return WorkerJob();
    const std::chrono::duration<double> budget(std::min(*seconds, longestBudgetSeconds));
    return MeasuringJob{arguments[1], std::chrono::duration_cast<std::chrono::nanoseconds>(budget)};
}

} // namespace vantry::CleanupScanner
