#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <condition_variable>
#include <memory>
#include <mutex>

namespace vantry {

/// Ends work with child processes on other threads, and prevents more of it from starting; for the end of this process.
/// Any thread.
class StopSwitch {
    struct EndOfWork {
        void operator()(StopSwitch* owner) const { owner->endWork(); }
    };

public:
    /// Work that `stop` waits for, until this is destroyed. The switch must outlive it.
    using Work = std::unique_ptr<StopSwitch, EndOfWork>;

    /// Fails if no descriptors are free.
    [[nodiscard]] static Result<std::shared_ptr<StopSwitch>> create();

    /// Fails after `stop`. `stopSwitch` may be null.
    [[nodiscard]] static Result<Work> beginWork(const std::shared_ptr<StopSwitch>& stopSwitch);

    /// Readable, for `poll`, after `stop`.
    [[nodiscard]] int descriptor() const { return readEnd_.get(); }
    [[nodiscard]] bool isStopped() const;

    /// Ends the children and prevents new ones. Waits until all work has ended, for half a second at most, and returns
    /// whether it has. That is long enough for a child that hangs in a file system: such a child is left behind.
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
