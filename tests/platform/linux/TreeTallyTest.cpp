#include "platform/linux/TreeTally.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <limits>

namespace vantry {

namespace {

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t one = 1;

struct statx file(std::uint64_t blocks, std::int64_t seconds = 0, std::uint32_t nanoseconds = 0) {
    struct statx facts = {};
    facts.stx_mode = S_IFREG | 0600;
    facts.stx_blocks = blocks;
    facts.stx_mtime.tv_sec = seconds;
    facts.stx_mtime.tv_nsec = nanoseconds;
    return facts;
}

SystemTime at(std::int64_t nanoseconds) { return SystemTime(std::chrono::nanoseconds(nanoseconds)); }

} // namespace

TEST(TreeTally, IsEmptyAtFirst) {
    const std::array<TreeTally, 2> tallies;
    EXPECT_EQ(TreeTally::sum(tallies, true), TreeTotals{.complete = true});
    EXPECT_EQ(TreeTally::sum(tallies, false), TreeTotals{});
}

TEST(TreeTally, AddsUpWhatTheThreadsHaveCounted) {
    std::array<TreeTally, 3> tallies;
    tallies[0].add(file(8, 1'600'000'000));
    tallies[0].add(file(0, -5));
    tallies[2].add(file(1, 1'700'000'000, 7));
    EXPECT_EQ(TreeTally::sum(tallies, true), (TreeTotals{.allocatedBytes = std::int64_t{9} * 512,
                                                         .regularFiles = 3,
                                                         .newestModification = at(1'700'000'000'000'000'007),
                                                         .complete = true}));
}

TEST(TreeTally, IsNotCompleteWhenAThreadIsNotDoneOrMissedSomething) {
    std::array<TreeTally, 2> tallies;
    tallies[0].add(file(8));
    EXPECT_FALSE(TreeTally::sum(tallies, false).complete);
    EXPECT_TRUE(TreeTally::sum(tallies, true).complete);
    tallies[1].cutShort();
    EXPECT_FALSE(TreeTally::sum(tallies, true).complete);
    EXPECT_EQ(TreeTally::sum(tallies, true).allocatedBytes, 4096);
}

TEST(TreeTally, ClampsAnOverflowAndIsIncomplete) {
    const struct {
        std::uint64_t first; ///< blocks, counted by one thread
        std::uint64_t second;
        std::uint64_t other; ///< counted by another
        std::int64_t bytes;
        bool complete;
    } cases[] = {
        {one << 53, 0, 0, std::int64_t{1} << 62, true},
        {one << 53, (one << 53) - 1, 0, largest - 511, true}, // the largest sum that there can be
        {one << 53, 0, (one << 53) - 1, largest - 511, true},
        {one << 53, one << 53, 0, largest, false}, // 2^63: one too many
        {one << 53, 0, one << 53, largest, false},
        {one << 53, one << 53, one << 53, largest, false},
        {0, one << 54, 0, largest, false}, // one file alone
        {0, one << 55, 0, largest, false}, // 2^64: its low 64 bits are all zero
        {(one << 55) + 8, 0, 0, largest, false},
        {std::numeric_limits<std::uint64_t>::max(), 0, 0, largest, false},
        {std::numeric_limits<std::uint64_t>::max(), 1, 1, largest, false},
    };
    for (const auto& [first, second, other, bytes, complete] : cases) {
        std::array<TreeTally, 2> tallies;
        tallies[0].add(file(first));
        tallies[0].add(file(second));
        tallies[1].add(file(other));
        const TreeTotals totals = TreeTally::sum(tallies, true);
        EXPECT_EQ(totals.allocatedBytes, bytes) << first << ", " << second << ", " << other;
        EXPECT_EQ(totals.complete, complete) << first << ", " << second << ", " << other;
        EXPECT_EQ(totals.regularFiles, 3U);
    }
}

TEST(TreeTally, ClampsDatesOutOfRange) {
    const struct {
        std::int64_t seconds;
        std::uint32_t nanoseconds;
        SystemTime time;
    } cases[] = {
        {0, 0, at(0)},
        {-1, 999'999'999, at(-1)},
        {9'223'372'036, 854'775'807, SystemTime::max()},
        {9'223'372'036, 854'775'808, SystemTime::max()},
        {10'413'792'000, 0, SystemTime::max()}, // 2300
        {largest, 999'999'999, SystemTime::max()},
        {-9'223'372'037, 145'224'192, SystemTime::min()},
        {-9'223'372'037, 145'224'191, SystemTime::min()},
        {-11'676'096'000, 0, SystemTime::min()}, // 1600
        {std::numeric_limits<std::int64_t>::min(), 0, SystemTime::min()},
    };
    for (const auto& [seconds, nanoseconds, time] : cases) {
        TreeTally tally;
        tally.add(file(1, seconds, nanoseconds));
        EXPECT_EQ(TreeTally::sum({&tally, 1}, true).newestModification, time) << seconds;
        tally.add(file(1, -11'676'096'000)); // an older one changes nothing
        EXPECT_EQ(TreeTally::sum({&tally, 1}, true).newestModification, time) << seconds;
    }
}

} // namespace vantry
