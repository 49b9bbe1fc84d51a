#pragma once

#include <chrono>

namespace vantry {

/// The calls of `poll` that this process made. They show how long the code was willing to wait, whatever the clock
/// says, so a busy machine does not matter. Needs RecordedPolls.cpp, which stands in for the system's function.
struct RecordedPolls {
    static void forget();
    static int count();
    /// The time-outs of those calls that waited for nothing, together.
    static std::chrono::milliseconds waitedInVain();
};

} // namespace vantry
