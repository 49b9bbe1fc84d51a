#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>

namespace vantry {

/// Runs the event loop until the condition holds; false when it does not within ten seconds.
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

/// Handles everything that waits, and what follows from it.
inline void settle() {
    for (int turn = 0; turn < 5; ++turn) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace vantry
