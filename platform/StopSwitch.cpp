#include "platform/StopSwitch.h"

#include "platform/ChildProcessSystem.h"

#include <array>
#include <chrono>
#include <utility>

namespace vantry {

namespace {

// Longer than SupervisedChild takes to end a child.
constexpr std::chrono::milliseconds patience{500};

} // namespace

Result<std::shared_ptr<StopSwitch>> StopSwitch::create() {
    std::array<int, 2> ends{};
    if (const int failure = ChildProcessSystem::openPipe(ends); failure != 0)
        return std::unexpected(errorFromErrno(failure, "pipe"));
    return std::shared_ptr<StopSwitch>(new StopSwitch(UniqueFd(ends[0]), UniqueFd(ends[1])));
}

StopSwitch::StopSwitch(UniqueFd readEnd, UniqueFd writeEnd)
    : readEnd_(std::move(readEnd)),
      writeEnd_(std::move(writeEnd)) {}

Result<StopSwitch::Work> StopSwitch::beginWork(const std::shared_ptr<StopSwitch>& stopSwitch) {
    if (!stopSwitch)
        return Work();
    const std::lock_guard lock(stopSwitch->mutex_);
    if (stopSwitch->isStopped_)
        return std::unexpected(Error{ErrorKind::timedOut, "stopped"});
    ++stopSwitch->workCount_;
    return Work(stopSwitch.get());
}

void StopSwitch::endWork() {
    const std::lock_guard lock(mutex_);
    --workCount_;
    workEnded_.notify_all();
}

bool StopSwitch::isStopped() const {
    const std::lock_guard lock(mutex_);
    return isStopped_;
}

bool StopSwitch::stop() {
    std::unique_lock lock(mutex_);
    isStopped_ = true;
    writeEnd_.reset();
    return workEnded_.wait_for(lock, patience, [this] { return workCount_ == 0; });
}

} // namespace vantry
