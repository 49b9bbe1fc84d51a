#pragma once

#include "platform/MainQueue.h"

#include <QObject>
#include <memory>
#include <mutex>

namespace vantry {

/// The Qt event loop of the thread that creates this.
class QtMainQueue : public MainQueue {
public:
    void post(std::function<void()> block) override;
    [[nodiscard]] std::unique_ptr<Subscription> repeatEvery(std::chrono::milliseconds interval,
                                                            std::function<void()> block) override;
    [[nodiscard]] std::unique_ptr<Subscription> whenReadable(int fd, std::function<void()> block) override;

    /// Drops waiting and later posts. Called after the event loop has ended, when background work may still post. Main
    /// thread.
    void close();

private:
    std::mutex mutex_;
    std::unique_ptr<QObject> receiver_ = std::make_unique<QObject>(); ///< null when closed
};

} // namespace vantry
