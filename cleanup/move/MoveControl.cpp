#include "cleanup/move/MoveControl.h"

namespace vantry {

bool MoveControl::begin() {
    const std::lock_guard lock(mutex_);
    isRunning_ = !isStopped_;
    return isRunning_;
}

bool MoveControl::isStopped() const {
    const std::lock_guard lock(mutex_);
    return isStopped_;
}

void MoveControl::end() {
    const std::lock_guard lock(mutex_);
    isRunning_ = false;
    ended_.notify_all();
}

void MoveControl::stop(std::chrono::milliseconds longest) {
    std::unique_lock lock(mutex_);
    isStopped_ = true;
    ended_.wait_for(lock, longest, [this] { return !isRunning_; });
}

} // namespace vantry
