#include "cleanup/scan/PropertyListReader.h"

#include "cleanup/scan/PropertyListPayload.h"
#include "cleanup/scan/WorkerArguments.h"
#include "platform/SupervisedChild.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::seconds longestFile{1};
// What a process is given as arguments is limited; far more than these are allowed everywhere.
constexpr std::size_t mostFiles = 500;
constexpr std::size_t mostBytesOfFiles = 64 << 10;

// A path that no file can have cannot be an argument either: too long, or cut off at its zero. The empty one stands for
// it.
std::string argumentFor(const std::filesystem::path& file) {
    constexpr std::size_t longestPath = 4096; // with the zero at its end
    const bool canExist = file.native().size() < longestPath && file.native().find('\0') == std::string::npos;
    return canExist ? file.native() : "";
}

std::vector<std::string> argumentsFor(std::span<const std::filesystem::path> files, std::span<const std::string> keys) {
    std::vector<std::string> arguments{propertyListFlag, std::to_string(keys.size())};
    arguments.insert(arguments.end(), keys.begin(), keys.end());
    std::ranges::transform(files, std::back_inserter(arguments), argumentFor);
    return arguments;
}

// How many of the first files one worker is given; at least one.
std::size_t batchSize(std::span<const std::filesystem::path> files) {
    std::size_t count = 0;
    for (std::size_t bytes = 0; count < std::min(files.size(), mostFiles); ++count) {
        bytes += argumentFor(files[count]).size() + 1;
        if (count > 0 && bytes > mostBytesOfFiles)
            break;
    }
    return count;
}

} // namespace

PropertyListTexts readPropertyLists(const std::filesystem::path& executable,
                                    std::span<const std::filesystem::path> files, std::span<const std::string> keys,
                                    Deadline deadline, const std::shared_ptr<StopSwitch>& stopSwitch) {
    PropertyListTexts answer{.texts = {}, .complete = true};
    answer.texts.resize(files.size());
    for (std::size_t done = 0; done < files.size();) {
        const auto batch = files.subspan(done, batchSize(files.subspan(done)));
        auto worker = hasPassed(deadline) ? std::unexpected(Error{ErrorKind::timedOut, {}})
                                          : SupervisedChild::start(executable, argumentsFor(batch, keys),
                                                                   ChildOutput::pipe, stopSwitch);
        if (!worker) {
            answer.complete = false;
            break;
        }
        for (const std::size_t end = done + batch.size(); done < end; ++done) {
            const auto line = worker->nextLine(longestPropertyListLine, std::min(deadline, deadlineIn(longestFile)));
            auto payload = line ? decodedPropertyList(*line, keys) : std::nullopt;
            if (!payload) {
                answer.complete = false;
                ++done; // the next worker begins behind it
                break;
            }
            answer.texts[done] = std::move(payload->texts);
        }
    }
    return answer;
}

} // namespace vantry::CleanupScanner
