#include "shell/qt/QtMainQueue.h"

#include <QSocketNotifier>
#include <QTimer>
#include <utility>

namespace vantry {

namespace {

/// Keeps an object of Qt's alive, and with it what it is connected to.
template <class Object>
class ObjectSubscription : public Subscription {
public:
    template <class... Arguments>
    explicit ObjectSubscription(Arguments&&... arguments) : object(std::forward<Arguments>(arguments)...) {}

    Object object;
};

} // namespace

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<QObject>()) {}

QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(std::function<void()> block) {
    const std::lock_guard lock(mutex_);
    if (receiver_)
        QMetaObject::invokeMethod(receiver_.get(), std::move(block), Qt::QueuedConnection);
}

std::unique_ptr<Subscription> QtMainQueue::repeatEvery(std::chrono::milliseconds interval,
                                                       std::function<void()> block) {
    auto subscription = std::make_unique<ObjectSubscription<QTimer>>();
    QTimer& timer = subscription->object;
    // Half a second early or late lets the system wake once for many.
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
