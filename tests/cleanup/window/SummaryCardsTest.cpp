#include "cleanup/window/SummaryTexts.h"
#include "tests/support/Candidates.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

TEST(SummaryCards, TheMacsStorage) {
    const StorageSnapshot snapshot{
        .volumeName = "Data", .totalBytes = 500'000'000'000, .availableBytes = 200'000'000'000, .updatedAt = {}};
    EXPECT_EQ(macStorageTexts(snapshot, HostSystem::macOS),
              (SummaryCardTexts{"300 GB", "300 GB used of 500 GB total"}));
    const StorageSnapshot emptyVolume{
        .volumeName = "Data", .totalBytes = 1'000'000'000, .availableBytes = 1'000'000'000, .updatedAt = {}};
    EXPECT_EQ(macStorageTexts(emptyVolume, HostSystem::macOS), (SummaryCardTexts{"0 B", "0 B used of 1 GB total"}));
    EXPECT_EQ(macStorageTexts(std::nullopt, HostSystem::macOS),
              (SummaryCardTexts{"Unavailable", "Mac storage size could not be read"}));
}

TEST(SummaryCards, TheFilesFound) {
    std::vector<CleanupCandidate> candidates;
    EXPECT_EQ(filesFoundTexts(candidates), (SummaryCardTexts{"0 B", "0 files shown; nothing removed automatically"}));
    candidates.push_back(logAt("/a", 2'000'000));
    EXPECT_EQ(filesFoundTexts(candidates), (SummaryCardTexts{"2 MB", "1 file shown; nothing removed automatically"}));
    candidates.push_back(candidateAt("/b", CleanupCategory::deviceBackup, 3'000'000));
    EXPECT_EQ(filesFoundTexts(candidates), (SummaryCardTexts{"5 MB", "2 files shown; nothing removed automatically"}));
}

} // namespace

} // namespace vantry
