#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vantry {

/// Through which one thread ends a move that runs on another.
class MoveControl {
public:
    // The thread that moves.

    /// False when the move has been stopped before it began; it then must not begin.
    [[nodiscard]] bool begin();
    /// Asked before each file: whether the move has been stopped.
    [[nodiscard]] bool isStopped() const;
    /// The move is over, and its record is written.
    void end();

    // The thread that stops.

    /// No further file is moved. Waits for the end of a move that has begun, at most `longest`.
    void stop(std::chrono::milliseconds longest);

private:
    mutable std::mutex mutex_;
    std::condition_variable ended_;
    bool isRunning_ = false;
    bool isStopped_ = false;
};

} // namespace vantry
