#include "storage/StorageSnapshot.h"

#include <gtest/gtest.h>

#include <limits>

namespace vantry {

namespace {

constexpr auto leastBytes = std::numeric_limits<std::int64_t>::min();
constexpr auto mostBytes = std::numeric_limits<std::int64_t>::max();

StorageSnapshot snapshot(std::int64_t total, std::int64_t available) { return {"Disk", total, available, {}}; }

} // namespace

TEST(StorageSnapshot, ItsFieldsAreGivenInTheirOrder) {
    const SystemTime moment{std::chrono::seconds(5)};
    const StorageSnapshot made{"Disk", 100, 40, moment};
    EXPECT_EQ(made.volumeName, "Disk");
    EXPECT_EQ(made.totalBytes, 100);
    EXPECT_EQ(made.availableBytes, 40);
    EXPECT_EQ(made.updatedAt, moment);
}

TEST(StorageSnapshot, UsedIsTotalMinusAvailable) {
    const struct {
        std::int64_t total;
        std::int64_t available;
        std::int64_t used;
        double fraction;
    } cases[] = {
        {100, 40, 60, 0.6},
        {100, 100, 0, 0.0},
        {100, 99, 1, 0.01},
        {100, 0, 100, 1.0},
        {1, 0, 1, 1.0},
        {1, 1, 0, 0.0},
        {499'963'174'912, 249'981'587'456, 249'981'587'456, 0.5},
        {mostBytes, 0, mostBytes, 1.0},
        {mostBytes, mostBytes, 0, 0.0},
    };
    for (const auto& [total, available, used, fraction] : cases) {
        EXPECT_EQ(snapshot(total, available).usedBytes(), used) << total << " " << available;
        EXPECT_EQ(snapshot(total, available).usedFraction(), fraction) << total << " " << available;
    }
}

TEST(StorageSnapshot, UsedBytesNeverGoBelowZero) {
    const struct {
        std::int64_t total;
        std::int64_t available;
    } cases[] = {{100, 101},      {100, mostBytes},        {0, 1}, {-5, 0}, {-5, -5},
                 {leastBytes, 0}, {leastBytes, mostBytes}, {0, 0}};
    for (const auto& [total, available] : cases) {
        EXPECT_EQ(snapshot(total, available).usedBytes(), 0) << total << " " << available;
        EXPECT_EQ(snapshot(total, available).usedFraction(), 0.0) << total << " " << available;
    }
}

TEST(StorageSnapshot, TheFractionIsZeroWithoutATotal) {
    for (const std::int64_t total : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-5}, leastBytes + 1})
        EXPECT_EQ(snapshot(total, leastBytes).usedFraction(), 0.0) << total;
}

TEST(StorageSnapshot, TheFractionIsAtMostOne) {
    const struct {
        std::int64_t total;
        std::int64_t available;
        std::int64_t used;
    } cases[] = {
        {100, -1, 101},
        {1, -mostBytes, mostBytes},
        {100, leastBytes, mostBytes},
        {mostBytes, -1, mostBytes},
        {mostBytes, leastBytes, mostBytes},
    };
    for (const auto& [total, available, used] : cases) {
        EXPECT_EQ(snapshot(total, available).usedBytes(), used) << total << " " << available;
        EXPECT_EQ(snapshot(total, available).usedFraction(), 1.0) << total << " " << available;
    }
}

TEST(StorageSnapshot, IsAValueThatDiffersByEachOfItsFields) {
    const StorageSnapshot one{"Disk", 100, 40, SystemTime{}};
    EXPECT_EQ(one, StorageSnapshot(one));
    EXPECT_NE(one, (StorageSnapshot{"Other", 100, 40, SystemTime{}}));
    EXPECT_NE(one, (StorageSnapshot{"Disk", 101, 40, SystemTime{}}));
    EXPECT_NE(one, (StorageSnapshot{"Disk", 100, 41, SystemTime{}}));
    EXPECT_NE(one, (StorageSnapshot{"Disk", 100, 40, SystemTime{std::chrono::nanoseconds(1)}}));
}

} // namespace vantry
