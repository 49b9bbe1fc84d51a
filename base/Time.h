#pragma once

#include <chrono>
#include <cstdint>

namespace vantry {

/// A moment in the years 1677 to 2262, to the nanosecond. Others are clamped to that range.
using SystemTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// The moment `seconds` and `nanoseconds` (0 to 999,999,999) after the start of 1970, as file systems tell it.
[[nodiscard]] constexpr SystemTime systemTimeFromUnix(std::int64_t seconds, long nanoseconds) {
    constexpr std::int64_t perSecond = 1'000'000'000;
    const bool isBefore1970 = seconds < 0;
    // Before 1970 one second is moved to the nanoseconds, so that the first moments of the range do not overflow.
    std::int64_t count = isBefore1970 ? seconds + 1 : seconds;
    const std::int64_t rest = isBefore1970 ? nanoseconds - perSecond : nanoseconds;
    if (__builtin_mul_overflow(count, perSecond, &count) || __builtin_add_overflow(count, rest, &count))
        return isBefore1970 ? SystemTime::min() : SystemTime::max();
    return SystemTime(std::chrono::nanoseconds(count));
}

} // namespace vantry
