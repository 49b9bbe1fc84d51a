#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vantry {

/// Lets one thread stop a move that runs on another.
class MoveControl {
public:
    // Called by the thread that moves.

    /// False if the move was stopped before it began; then it must not begin.
    [[nodiscard]] bool begin();
    /// Whether the move was stopped; ask before each file.
    [[nodiscard]] bool isStopped() const;
    /// The move has ended and its record is written.
    void end();

    // Called by the thread that stops.

    /// Lets no further file be moved. Waits at most `longest` for a move that has begun to end.
    void stop(std::chrono::milliseconds longest);

private:
    mutable std::mutex mutex_;
    std::condition_variable ended_;
    bool isRunning_ = false;
    bool isStopped_ = false;
};

} // namespace vantry
