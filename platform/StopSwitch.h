#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <condition_variable>
#include <memory>
#include <mutex>

namespace vantry {

/// Ends work with child processes that other threads do, and keeps more of it from starting: for the end of this
/// process. Any thread.
class StopSwitch {
    struct EndOfWork {
        void operator()(StopSwitch* owner) const { owner->endWork(); }
    };

public:
    /// Something that `stop` waits for, from `beginWork` to the end of this. Not longer than the switch.
    using Work = std::unique_ptr<StopSwitch, EndOfWork>;

    /// Fails without descriptors.
    [[nodiscard]] static Result<std::shared_ptr<StopSwitch>> create();

    /// Fails once `stop` was called. Without a switch there is nothing to wait for.
    [[nodiscard]] static Result<Work> beginWork(const std::shared_ptr<StopSwitch>& stopSwitch);

    /// Readable, for `poll`, once `stop` was called.
    [[nodiscard]] int descriptor() const { return readEnd_.get(); }
    [[nodiscard]] bool isStopped() const;

    /// From here on children are ended and no more of them started. Waits until all work has ended, for half a second
    /// at most. Whether it has: the work with a child that a hung file system holds ends in that time, too.
    bool stop();

private:
    StopSwitch(UniqueFd readEnd, UniqueFd writeEnd);
    void endWork();

    UniqueFd readEnd_;
    UniqueFd writeEnd_; ///< closed by `stop`
    mutable std::mutex mutex_;
    std::condition_variable workEnded_;
    int workCount_ = 0;
    bool isStopped_ = false;
};

} // namespace vantry
