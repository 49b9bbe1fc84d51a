#pragma once

#include <chrono>

namespace vantry {

/// A moment, to the nanosecond: 1677 to 2262. What lies outside is held at the nearer end.
using SystemTime = std::chrono::sys_time<std::chrono::nanoseconds>;

} // namespace vantry
