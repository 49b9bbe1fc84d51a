#include "base/Time.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace vantry {

TEST(SystemTimeFromUnix, CountsNanosecondsAndClampsTimesOutOfRange) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    const struct {
        std::int64_t seconds;
        long nanoseconds;
        std::int64_t count;
    } cases[] = {
        {0, 0, 0},
        {0, 1, 1},
        {1, 0, 1'000'000'000},
        {1'700'000'000, 123'456'789, 1'700'000'000'123'456'789},
        {-1, 0, -1'000'000'000},
        {-1, 999'999'999, -1},
        {-2, 500'000'000, -1'500'000'000},
        {-2'147'483'648, 1, -2'147'483'647'999'999'999},
        {4'294'967'296, 0, 4'294'967'296'000'000'000},
        {9'223'372'036, 854'775'806, largest - 1},
        {9'223'372'036, 854'775'807, largest}, // the last that fits
        {9'223'372'036, 854'775'808, largest},
        {9'223'372'036, 999'999'999, largest},
        {9'223'372'037, 0, largest},
        {largest, 999'999'999, largest},
        {-9'223'372'037, 145'224'193, least + 1},
        {-9'223'372'037, 145'224'192, least}, // the first that fits
        {-9'223'372'037, 145'224'191, least},
        {-9'223'372'037, 0, least},
        {-9'223'372'038, 999'999'999, least},
        {least, 0, least},
        {least, 999'999'999, least},
    };
    for (const auto& [seconds, nanoseconds, count] : cases)
        EXPECT_EQ(systemTimeFromUnix(seconds, nanoseconds).time_since_epoch().count(), count)
            << seconds << " s " << nanoseconds << " ns";
}

} // namespace vantry
