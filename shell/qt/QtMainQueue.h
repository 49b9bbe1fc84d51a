#pragma once

#include "platform/MainQueue.h"

#include <QObject>
#include <memory>
#include <mutex>

namespace vantry {

/// The Qt event loop of the thread that creates this.
class QtMainQueue : public MainQueue {
public:
    QtMainQueue();
    ~QtMainQueue() override;

    void post(std::function<void()> block) override;
    [[nodiscard]] std::unique_ptr<Subscription> repeatEvery(std::chrono::milliseconds interval,
                                                            std::function<void()> block) override;
    [[nodiscard]] std::unique_ptr<Subscription> whenReadable(int fd, std::function<void()> block) override;

    /// Drops what waits and what comes: called when the event loop has ended, while background work may go on. Main
    /// thread.
    void close();

private:
    std::mutex mutex_;
    std::unique_ptr<QObject> receiver_; ///< null when closed
};

} // namespace vantry
