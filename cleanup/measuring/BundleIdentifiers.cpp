#include "cleanup/measuring/BundleIdentifiers.h"

#include "cleanup/measuring/PropertyListPayload.h"
#include "cleanup/measuring/WorkerArguments.h"
#include "platform/SupervisedChild.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <utility>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::milliseconds timeBetweenSigns{100};
constexpr std::chrono::seconds longestSilence{1};
constexpr std::size_t mostIdentifiers = 100'000;
constexpr std::string_view lastLine = "complete";
const auto keys = std::to_array<std::string>({"CFBundleIdentifier"});

} // namespace

void writeBundleIdentifiers(const ApplicationPlaces& places, const std::function<bool(std::string_view)>& write,
                            const std::function<std::chrono::steady_clock::time_point()>& now) {
    constexpr std::size_t enough = 16 << 10; // bytes, written at once
    std::string lines;
    auto lastWrite = now();
    const auto tell = [&](const std::optional<std::string>& identifier) {
        if (identifier)
            lines += encoded({.texts = std::map<std::string, std::string>{{keys.front(), *identifier}}});
        const auto time = now();
        if (lines.size() < enough && time - lastWrite < timeBetweenSigns)
            return true;
        lastWrite = time;
        return write(lines.empty() ? encoded(PropertyListPayload()) : std::exchange(lines, {}));
    };
    if (searchBundles(places, tell))
        write(lines + std::string(lastLine) + '\n');
}

std::optional<std::set<std::string>> readBundleIdentifiers(const std::filesystem::path& executable,
                                                           const ApplicationPlaces& places, Deadline deadline,
                                                           const std::shared_ptr<StopSwitch>& stopSwitch) {
    if (hasPassed(deadline))
        return std::nullopt;
    std::vector<std::string> arguments{bundleIdentifiersFlag, places.system.native()};
    for (const auto& folder : places.folders)
        arguments.push_back(folder.native());
    auto worker = SupervisedChild::start(executable, arguments, ChildOutput::pipe, stopSwitch);
    if (!worker)
        return std::nullopt;
    std::set<std::string> identifiers;
    while (identifiers.size() <= mostIdentifiers) {
        const auto line = worker->nextLine(longestPropertyListLine, std::min(deadline, deadlineIn(longestSilence)));
        if (line == lastLine)
            return identifiers;
        const auto payload = line ? decodedPropertyList(*line, keys) : std::nullopt;
        if (!payload)
            break;
        if (payload->texts)
            for (const auto& [key, identifier] : *payload->texts)
                identifiers.insert(identifier);
    }
    return std::nullopt;
}

} // namespace vantry::CleanupScanner
