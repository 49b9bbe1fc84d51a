#include "cleanup/model/CleanupScanReport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

namespace vantry {

namespace {

CleanupScanReport report() {
    CleanupScanReport made{
        .candidates = {CleanupCandidate::withFingerprint("/a", "a", CleanupCategory::log, "why", 1,
                                                         CleanupConfidence::suggested, {}, {}),
                       CleanupCandidate::withFingerprint("/b", "b", CleanupCategory::log, "why", 2,
                                                         CleanupConfidence::suggested, {}, {})},
        .storageSnapshot = StorageSnapshot{"Disk", 100, 40, {}},
        .duration = std::chrono::duration<double>(1.5),
    };
    for (const auto& row : allCleanupCategories) {
        made.states[row.value] = CleanupScanState::checked;
        made.metrics[row.value] = {CleanupByteAmount::exact(7), 3, 2};
    }
    return made;
}

} // namespace

TEST(CleanupCategoryMetric, EveryFieldCountsForEqualityAndHash) {
    const CleanupCategoryMetric metric{CleanupByteAmount::exact(7), 3, 2};
    EXPECT_EQ(CleanupCategoryMetric(), (CleanupCategoryMetric{CleanupByteAmount::unavailable(), 0, 0}));
    const std::hash<CleanupCategoryMetric> hash;
    EXPECT_EQ(hash(metric), hash(CleanupCategoryMetric{CleanupByteAmount::exact(7), 3, 2}));
    for (const CleanupCategoryMetric& other :
         {CleanupCategoryMetric{CleanupByteAmount::atLeast(7), 3, 2},
          CleanupCategoryMetric{CleanupByteAmount::exact(7), 4, 2},
          CleanupCategoryMetric{CleanupByteAmount::exact(7), 3, 1}, CleanupCategoryMetric{}}) {
        EXPECT_NE(other, metric);
        EXPECT_NE(hash(other), hash(metric));
    }
}

TEST(CleanupScanReport, ACopyIsEqualAndHasTheSameHash) {
    const CleanupScanReport made = report();
    const std::vector<CleanupScanReport> copies(2, made);
    EXPECT_EQ(copies[1], made);
    EXPECT_EQ(std::hash<CleanupScanReport>()(copies[1]), std::hash<CleanupScanReport>()(made));
}

TEST(CleanupScanReport, EveryFieldCountsForEqualityAndHash) {
    const std::vector<std::function<void(CleanupScanReport&)>> changes = {
        [](CleanupScanReport& changed) { changed.candidates.pop_back(); },
        [](CleanupScanReport& changed) { std::swap(changed.candidates[0], changed.candidates[1]); },
        [](CleanupScanReport& changed) { changed.states[CleanupCategory::log] = CleanupScanState::limited; },
        [](CleanupScanReport& changed) { changed.states.erase(CleanupCategory::log); },
        [](CleanupScanReport& changed) { changed.metrics[CleanupCategory::log].reviewableBytes = 4; },
        [](CleanupScanReport& changed) { changed.metrics.erase(CleanupCategory::log); },
        [](CleanupScanReport& changed) { changed.storageSnapshot->availableBytes = 41; },
        [](CleanupScanReport& changed) { changed.storageSnapshot = std::nullopt; },
        [](CleanupScanReport& changed) { changed.duration = std::chrono::duration<double>(1.25); },
        [](CleanupScanReport& changed) { changed.incompletePaths.insert("/x"); },
    };
    const CleanupScanReport made = report();
    for (std::size_t i = 0; i < changes.size(); ++i) {
        CleanupScanReport changed = made;
        changes[i](changed);
        EXPECT_NE(changed, made) << i;
        EXPECT_NE(std::hash<CleanupScanReport>()(changed), std::hash<CleanupScanReport>()(made)) << i;
    }
}

} // namespace vantry
