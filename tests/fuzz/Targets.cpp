#include "tests/fuzz/Targets.h"

#include "base/Utf8.h"
#include "cleanup/measuring/PropertyListPayload.h"
#include "cleanup/measuring/WorkerArguments.h"
#include "cleanup/measuring/WorkerPayload.h"
#include "platform/LsofOutput.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantry {

namespace {

bool canBeInAFolder(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find_first_of(std::string_view("/\0", 2)) == name.npos;
}

std::vector<std::string> pieces(std::string_view bytes, char separator) {
    std::vector<std::string> pieces;
    while (!bytes.empty()) {
        const auto end = std::min(bytes.find(separator), bytes.size());
        pieces.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return pieces;
}

void readMetrics(std::string_view bytes) {
    const auto payload = decodedDirectoryMetrics(bytes);
    if (!payload)
        return;
    requireThat(nlohmann::json::accept(bytes), "what is read is JSON");
    requireThat(payload->size >= 0, "a size is not negative");
    requireThat(!payload->newestModificationTime || timeFromSecondsSince1970(*payload->newestModificationTime),
                "a time is one that can be told");
    requireThat(decodedDirectoryMetrics(encoded(*payload)) == payload, "measures are read as they are written");
}

void readChildren(std::string_view bytes) {
    const auto writtenAndRead = [](ShallowChildrenPayload payload) {
        auto read = decodedShallowChildren(encoded(payload));
        requireThat(read.has_value(), "a list that is written can be read");
        std::ranges::sort(payload.names); // names that are not valid UTF-8 go behind the others
        std::ranges::sort(read->names);
        requireThat(*read == payload, "a list is read as it is written");
    };
    if (const auto payload = decodedShallowChildren(bytes)) {
        requireThat(nlohmann::json::accept(bytes), "what is read is JSON");
        requireThat(std::ranges::all_of(payload->names, canBeInAFolder), "a name stays in its folder");
        writtenAndRead(*payload);
    }
    ShallowChildrenPayload named{.names = pieces(bytes, '\n'), .complete = true};
    std::erase_if(named.names, [](const auto& name) { return !canBeInAFolder(name); });
    writtenAndRead(std::move(named));
}

void readChildrenMetrics(std::string_view bytes) {
    const auto payload = decodedChildrenMetrics(bytes);
    if (!payload)
        return;
    for (const auto& [name, metrics] : payload->children)
        requireThat(canBeInAFolder(name) && metrics.size >= 0, "a child is one that a folder can hold");
    requireThat(decodedChildrenMetrics(encoded(*payload)) == payload,
                "measures of children are read as they are written");
}

void readPropertyListPayload(std::string_view bytes) {
    const std::vector<std::string> keys{"CFBundleIdentifier", "Target Identifier", "GUID", "\xc3\xa9"};
    const auto payload = decodedPropertyList(bytes, keys);
    if (!payload)
        return;
    if (payload->texts)
        for (const auto& [key, text] : *payload->texts) {
            requireThat(std::ranges::find(keys, key) != keys.end(), "a key is one that was asked for");
            requireThat(isUtf8(text) && text.find('\0') == std::string::npos, "a text is UTF-8 without a zero");
        }
    std::string line = encoded(*payload);
    requireThat(std::ranges::count(line, '\n') == 1 && line.ends_with('\n'), "one line is written");
    line.pop_back();
    requireThat(decodedPropertyList(line, keys) == payload, "a line is read as it is written");
}

void readLsofOutput(std::string_view bytes) {
    std::size_t length = 0;
    for (const auto& path : pathsInLsofOutput(bytes)) {
        requireThat(!path.empty(), "a path is not empty");
        requireThat(bytes.find("n" + path.native()) != std::string_view::npos, "a path stands in the output");
        length += path.native().size() + 1;
    }
    requireThat(length <= bytes.size(), "nothing is told twice");
}

// An argument a line.
void readArguments(std::string_view bytes) {
    using namespace CleanupScanner;
    const auto arguments = pieces(bytes, '\n');
    const auto job = workerJob(arguments);
    const std::string flag = arguments.empty() ? "" : arguments[0];
    requireThat(!job || (flag.starts_with("--") && flag.ends_with("-worker")), "a worker is what has a flag in front");
    requireThat(job || (flag != directoryMetricsFlag && flag != childrenMetricsFlag && flag != shallowChildrenFlag),
                "what has a flag in front is a worker");
    if (!job)
        return;
    requireThat(std::holds_alternative<std::monostate>(*job) ||
                    std::holds_alternative<MeasuringJob>(*job) == (flag == directoryMetricsFlag),
                "the flag says what is to be measured");
    if (const auto* measuring = std::get_if<MeasuringJob>(&*job)) {
        requireThat(arguments.size() == 3, "measuring takes a folder and a budget");
        requireThat(measuring->folder == arguments[1], "the folder is taken as it is");
        requireThat(measuring->budget >= std::chrono::nanoseconds(0) && measuring->budget <= std::chrono::seconds(3),
                    "a budget is no longer than three seconds");
        requireThat(arguments[2].find_first_not_of("0123456789.eE+-") == std::string::npos,
                    "a budget is a plain number");
        requireThat(arguments[2].find_first_of("123456789") != std::string::npos, "a budget is not zero");
    } else if (const auto* listing = std::get_if<ListingJob>(&*job)) {
        requireThat(flag == shallowChildrenFlag, "the flag says what is to be listed");
        requireThat(arguments.size() == 3, "listing takes a folder and a file");
        requireThat(*listing == ListingJob{arguments[1], arguments[2]}, "the paths are taken as they are");
    }
}

} // namespace

std::vector<FuzzTarget> fuzzTargets() {
    std::vector<FuzzTarget> targets = {
        {"metrics", readMetrics}, {"children", readChildren},   {"children-metrics", readChildrenMetrics},
        {"lsof", readLsofOutput}, {"arguments", readArguments}, {"property-list", readPropertyListPayload}};
    std::ranges::copy(systemFuzzTargets(), std::back_inserter(targets));
    return targets;
}

} // namespace vantry
