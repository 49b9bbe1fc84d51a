#pragma once

#include <chrono>
#include <cstdint>

namespace vantry {

/// A moment, to the nanosecond: 1677 to 2262. What lies outside is held at the nearer end.
using SystemTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// The moment `seconds` and `nanoseconds` (0 to 999,999,999) after the start of 1970, as file systems tell it.
[[nodiscard]] constexpr SystemTime systemTimeFromUnix(std::int64_t seconds, long nanoseconds) {
    constexpr std::int64_t perSecond = 1'000'000'000;
    const bool isBefore1970 = seconds < 0;
    // Counted towards the result's end, so that the last moments at either end do not overflow on the way.
    std::int64_t count = isBefore1970 ? seconds + 1 : seconds;
    const std::int64_t rest = isBefore1970 ? nanoseconds - perSecond : nanoseconds;
    if (__builtin_mul_overflow(count, perSecond, &count) || __builtin_add_overflow(count, rest, &count))
        return isBefore1970 ? SystemTime::min() : SystemTime::max();
    return SystemTime(std::chrono::nanoseconds(count));
}

} // namespace vantry
