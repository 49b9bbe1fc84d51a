#include "shell/qt/QtMainQueue.h"

#include <QSocketNotifier>
#include <QTimer>
#include <utility>

namespace vantry {

namespace {

/// Owns a Qt object; destroying it ends its connections.
template <class Object>
class ObjectSubscription : public Subscription {
public:
    template <class... Arguments>
    explicit ObjectSubscription(Arguments&&... arguments) : object(std::forward<Arguments>(arguments)...) {}

    Object object;
};

} // namespace

void QtMainQueue::post(std::function<void()> block) {
    const std::lock_guard lock(mutex_);
    if (receiver_)
        QMetaObject::invokeMethod(receiver_.get(), std::move(block), Qt::QueuedConnection);
}

std::unique_ptr<Subscription> QtMainQueue::repeatEvery(std::chrono::milliseconds interval,
                                                       std::function<void()> block) {
    auto subscription = std::make_unique<ObjectSubscription<QTimer>>();
    QTimer& timer = subscription->object;
    // A coarse timer lets the system combine wake-ups.
    timer.setTimerType(interval >= std::chrono::seconds(10) ? Qt::VeryCoarseTimer : Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, std::move(block));
    timer.start(interval);
    return subscription;
}

std::unique_ptr<Subscription> QtMainQueue::whenReadable(int fd, std::function<void()> block) {
    auto subscription = std::make_unique<ObjectSubscription<QSocketNotifier>>(fd, QSocketNotifier::Read);
    QObject::connect(&subscription->object, &QSocketNotifier::activated, &subscription->object, std::move(block));
    return subscription;
}

void QtMainQueue::close() {
    std::unique_ptr<QObject> receiver;
    const std::lock_guard lock(mutex_);
    receiver = std::move(receiver_);
}

} // namespace vantry
