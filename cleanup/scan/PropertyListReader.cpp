#include "cleanup/scan/PropertyListReader.h"

#include "cleanup/scan/PropertyListPayload.h"
#include "cleanup/scan/WorkerArguments.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <iterator>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

constexpr std::chrono::seconds longestFile{1};
// What a process is given as arguments is limited; far more than these are allowed everywhere.
constexpr std::size_t mostFiles = 500;
constexpr std::size_t mostBytesOfFiles = 64 << 10;

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

/// Takes a worker's output apart into lines.
class Lines {
public:
    explicit Lines(ChildProcess& worker) : worker_(worker) {}

    /// Without its end. Absent when there is none until the deadline, the worker has ended or the line is too long.
    [[nodiscard]] std::optional<std::string> next(Deadline deadline) {
        for (;;) {
            if (const auto end = pending_.find('\n', searched_); end != std::string::npos) {
                std::string line = pending_.substr(0, end);
                pending_.erase(0, end + 1);
                searched_ = 0;
                return line;
            }
            searched_ = pending_.size();
            const bool ended = worker_.exitStatus().has_value();
            if (pending_.size() > longestPropertyListLine || hasPassed(deadline))
                return std::nullopt;
            if (read())
                continue;
            if (ended || atEnd_)
                return std::nullopt;
            std::array<pollfd, 2> events{{{worker_.exitDescriptor(), POLLIN, 0}, {worker_.output(), POLLIN, 0}}};
            poll(events.data(), events.size(), millisecondsUntil(deadline));
        }
    }

private:
    // Whether there was something to read.
    bool read() {
        std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): written by the call
        const ssize_t length = ::read(worker_.output(), buffer.data(), buffer.size());
        if (length > 0)
            pending_.append(buffer.data(), static_cast<std::size_t>(length));
        atEnd_ = length == 0 || (length < 0 && errno != EAGAIN && errno != EINTR);
        return length > 0;
    }

    ChildProcess& worker_;
    std::string pending_;
    std::size_t searched_ = 0;
    bool atEnd_ = false;
};

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
                                    Deadline deadline, const std::function<void(ChildProcess)>& stop) {
    PropertyListTexts answer{.texts = {}, .complete = true};
    answer.texts.resize(files.size());
    for (std::size_t done = 0; done < files.size();) {
        const auto batch = files.subspan(done, batchSize(files.subspan(done)));
        auto worker = hasPassed(deadline)
                          ? std::unexpected(Error{ErrorKind::timedOut, {}})
                          : ChildProcess::start(executable, argumentsFor(batch, keys), ChildOutput::pipe);
        if (!worker) {
            answer.complete = false;
            break;
        }
        Lines lines(*worker);
        for (const std::size_t end = done + batch.size(); done < end; ++done) {
            const auto line = lines.next(std::min(deadline, deadlineIn(longestFile)));
            auto payload = line ? decodedPropertyList(*line, keys) : std::nullopt;
            if (!payload) {
                answer.complete = false;
                ++done; // the next worker begins behind it
                break;
            }
            answer.texts[done] = std::move(payload->texts);
        }
        stop(std::move(*worker));
    }
    return answer;
}

} // namespace vantry::CleanupScanner
