#include "platform/Picture.h"

#include "base/Deadline.h"
#include "platform/ChildProcess.h"
#include "platform/linux/PictureWorker.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

constexpr std::chrono::seconds longestDecoding{20};
constexpr std::chrono::milliseconds stopPatience{200}; // after SIGTERM, and again after SIGKILL
constexpr std::size_t outputSize = pictureSide * pictureSide * sizeof(PicturePixel);

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

// A worker that a hung file system holds ends when that answers again, long after whoever asked for its picture.
class AbandonedWorkers {
public:
    void add(ChildProcess worker) {
        const std::scoped_lock lock(mutex_);
        workers_.push_back(std::move(worker));
    }
    std::size_t reap() {
        const std::scoped_lock lock(mutex_);
        std::erase_if(workers_, [](ChildProcess& worker) { return worker.exitStatus().has_value(); });
        return workers_.size();
    }

private:
    std::mutex mutex_;
    std::vector<ChildProcess> workers_;
};

AbandonedWorkers& abandonedWorkers() {
    static AbandonedWorkers workers;
    return workers;
}

bool endsUntil(ChildProcess& worker, Deadline deadline) {
    while (!worker.exitStatus() && !hasPassed(deadline)) {
        pollfd ended{worker.exitDescriptor(), POLLIN, 0};
        poll(&ended, 1, millisecondsUntil(deadline));
    }
    return worker.exitStatus().has_value();
}

void stop(ChildProcess worker) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        worker.sendSignal(signal);
        if (endsUntil(worker, deadlineIn(stopPatience)))
            return;
    }
    abandonedWorkers().add(std::move(worker));
}

/// The bytes of a picture as they arrive, and room to notice one that is too much.
struct Output {
    std::array<std::byte, outputSize + 1> bytes{};
    std::size_t size = 0;
    bool ended = false;

    /// Takes what the pipe holds right now.
    void takeFrom(int pipe) {
        while (!ended && size < bytes.size()) {
            const ssize_t length = read(pipe, bytes.data() + size, bytes.size() - size);
            if (length < 0 && errno == EINTR)
                continue;
            if (length < 0 && errno == EAGAIN)
                return;
            ended = length <= 0;
            size += static_cast<std::size_t>(std::max<ssize_t>(length, 0));
        }
    }
    [[nodiscard]] bool isTooMuch() const { return size > outputSize; }
};

// Whether the worker has ended well.
bool readUntilItEnds(ChildProcess& worker, Output& output, Deadline deadline) {
    while (!hasPassed(deadline)) {
        const auto status = worker.exitStatus();
        // What it wrote was in the pipe before it ended.
        output.takeFrom(worker.output());
        if (status || output.isTooMuch())
            return status == 0;
        std::array<pollfd, 2> events{{{worker.exitDescriptor(), POLLIN, 0}, {worker.output(), POLLIN, 0}}};
        poll(events.data(), output.ended ? 1 : 2, millisecondsUntil(deadline));
    }
    return false;
}

} // namespace

std::optional<PicturePixels> readPictureInWorker(const std::filesystem::path& executable,
                                                 const std::filesystem::path& file,
                                                 std::chrono::milliseconds patience) {
    abandonedWorkers().reap();
    auto worker = ChildProcess::start(executable, {pictureWorkerFlag, file.native()}, ChildOutput::pipe);
    if (!worker)
        return std::nullopt;
    Output output;
    const bool endedWell = readUntilItEnds(*worker, output, deadlineIn(patience));
    if (!worker->exitStatus())
        stop(std::move(*worker));
    if (!endedWell || output.size != outputSize)
        return std::nullopt;
    PicturePixels pixels(pictureSide * pictureSide);
    std::memcpy(pixels.data(), output.bytes.data(), outputSize);
    return pixels;
}

std::size_t abandonedPictureWorkers() { return abandonedWorkers().reap(); }

std::optional<PicturePixels> readPicture(const std::filesystem::path& file) {
    const auto executable = ownExecutable();
    return executable ? readPictureInWorker(*executable, file, longestDecoding) : std::nullopt;
}

} // namespace vantry
