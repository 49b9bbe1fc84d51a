#pragma once

#include <chrono>

namespace vantry {

/// What this process asked of `poll`. Tells how long code was willing to wait without a look at the clock, so that a
/// busy machine changes nothing. Needs RecordedPolls.cpp, which stands in for the system's function.
struct RecordedPolls {
    static void forget();
    static int count();
    /// The time-outs of those calls that waited for nothing, together.
    static std::chrono::milliseconds waitedInVain();
};

} // namespace vantry
