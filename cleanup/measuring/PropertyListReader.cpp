#include "cleanup/measuring/PropertyListReader.h"

#include "cleanup/measuring/PropertyListPayload.h"
#include "cleanup/measuring/WorkerArguments.h"
#include "platform/SupervisedChild.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::seconds longestFile{1};
// The size of a process's arguments is limited; every system allows far more than this.
constexpr std::size_t mostFiles = 500;
constexpr std::size_t mostBytesOfFiles = 64 << 10;

// A path that is too long or holds a NUL cannot be an argument, and no file can have it. The empty path replaces it.
std::string argumentFor(const std::filesystem::path& file) {
    constexpr std::size_t longestPath = 4096; // with its terminating NUL
    const bool canExist = file.native().size() < longestPath && file.native().find('\0') == std::string::npos;
    return canExist ? file.native() : "";
}

std::vector<std::string> argumentsFor(std::span<const std::filesystem::path> files, std::span<const std::string> keys) {
    std::vector<std::string> arguments{propertyListFlag, std::to_string(keys.size())};
    arguments.insert(arguments.end(), keys.begin(), keys.end());
    std::ranges::transform(files, std::back_inserter(arguments), argumentFor);
    return arguments;
}

// How many of the first files one worker gets; at least one, as no path is that long.
std::size_t batchSize(std::span<const std::filesystem::path> files) {
    std::size_t count = 0;
    for (std::size_t bytes = 0; count < std::min(files.size(), mostFiles); ++count) {
        bytes += argumentFor(files[count]).size() + 1;
        if (bytes > mostBytesOfFiles)
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
                ++done; // the next worker starts after it
                break;
            }
            answer.texts[done] = std::move(payload->texts);
        }
    }
    return answer;
}

} // namespace vantry::CleanupScanner
