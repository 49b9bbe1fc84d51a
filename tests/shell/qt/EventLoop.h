#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>

namespace vantry {

/// Runs the event loop until the condition holds; false if it does not within ten seconds.
template <class Condition>
[[nodiscard]] bool runUntil(Condition condition) {
    constexpr int longest = 10000;
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.elapsed() > longest)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

/// Handles all pending events, and those that they cause.
inline void settle() {
    for (int turn = 0; turn < 5; ++turn) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace vantry
