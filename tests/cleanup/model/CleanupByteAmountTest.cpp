#include "cleanup/model/CleanupScanReport.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>

namespace vantry {

namespace {

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

} // namespace

TEST(CleanupByteAmount, KnowsItsBytesUnlessUnavailable) {
    const struct {
        CleanupByteAmount amount;
        std::optional<std::int64_t> knownBytes;
        bool isExact;
    } cases[] = {
        {CleanupByteAmount::exact(0), 0, true},
        {CleanupByteAmount::exact(5), 5, true},
        {CleanupByteAmount::exact(largest), largest, true},
        {CleanupByteAmount::atLeast(0), 0, false},
        {CleanupByteAmount::atLeast(5), 5, false},
        {CleanupByteAmount::atLeast(largest), largest, false},
        {CleanupByteAmount::unavailable(), std::nullopt, false},
        {CleanupByteAmount(), std::nullopt, false},
    };
    for (const auto& [amount, knownBytes, isExact] : cases) {
        EXPECT_EQ(amount.knownBytes(), knownBytes);
        EXPECT_EQ(amount.isExact(), isExact) << knownBytes.value_or(-1);
    }
}

TEST(CleanupByteAmount, IsComparedByKindAndBytes) {
    const CleanupByteAmount different[] = {CleanupByteAmount::exact(0), CleanupByteAmount::exact(5),
                                           CleanupByteAmount::atLeast(0), CleanupByteAmount::atLeast(5),
                                           CleanupByteAmount::unavailable()};
    const std::hash<CleanupByteAmount> hash;
    for (std::size_t i = 0; i < std::size(different); ++i)
        for (std::size_t k = 0; k < std::size(different); ++k) {
            EXPECT_EQ(different[i] == different[k], i == k) << i << ' ' << k;
            EXPECT_EQ(hash(different[i]) == hash(different[k]), i == k) << i << ' ' << k;
        }
    EXPECT_EQ(CleanupByteAmount(), CleanupByteAmount::unavailable());
}

} // namespace vantry
