#pragma once

#include <chrono>

namespace vantry {

/// The moment at which work has to stop. Setting the system's clock does not move it.
using Deadline = std::chrono::steady_clock::time_point;

[[nodiscard]] inline Deadline deadlineIn(std::chrono::nanoseconds duration) {
    return std::chrono::steady_clock::now() + duration;
}

[[nodiscard]] inline bool hasPassed(Deadline deadline) { return std::chrono::steady_clock::now() >= deadline; }

} // namespace vantry
