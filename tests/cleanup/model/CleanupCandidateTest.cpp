#include "cleanup/model/CleanupCandidate.h"

#include "platform/FoundItem.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace vantry {

namespace {

using Category = CleanupCandidate::Category;
using Confidence = CleanupCandidate::Confidence;
using RemovalDisposition = CleanupCandidate::RemovalDisposition;

SystemTime at(std::int64_t nanoseconds) { return SystemTime(std::chrono::nanoseconds(nanoseconds)); }

CleanupCandidate candidateFor(const std::filesystem::path& url, Category category = Category::log) {
    return {url, "old.log", category, "Not changed for 40 days", 4096, Confidence::suggested};
}

CleanupCandidate madeUpCandidate() {
    return CleanupCandidate::withFingerprint("/home/old.log", "old.log", Category::log, "Not changed for 40 days", 4096,
                                             Confidence::suggested, {at(1), "file", "volume"}, at(2));
}

} // namespace

TEST(CleanupCandidate, HoldsWhatItWasMadeOfAndTakesTheFingerprintOfItsFile) {
    const TemporaryFolder folder;
    writeFile(folder / "old.log", "text");
    const SystemTime before = std::chrono::system_clock::now();
    const CleanupCandidate candidate(folder / "old.log", "Old log", Category::crashReport, "Not changed for 40 days",
                                     123'456'789'012, Confidence::review);
    EXPECT_EQ(candidate.url, folder / "old.log");
    EXPECT_EQ(candidate.title, "Old log");
    EXPECT_EQ(candidate.category, Category::crashReport);
    EXPECT_EQ(candidate.reason, "Not changed for 40 days");
    EXPECT_EQ(candidate.size, 123'456'789'012);
    EXPECT_EQ(candidate.confidence, Confidence::review);
    const FileFingerprint fingerprint = readFileFingerprint(folder / "old.log");
    ASSERT_TRUE(fingerprint.contentModificationDate && fingerprint.volumeIdentifier);
    EXPECT_EQ(candidate.scannedModificationDate, fingerprint.contentModificationDate);
    EXPECT_EQ(candidate.scannedResourceIdentifier, fingerprint.resourceIdentifier);
    EXPECT_EQ(candidate.scannedVolumeIdentifier, fingerprint.volumeIdentifier);
    EXPECT_GE(candidate.scannedAt, before);
    EXPECT_LE(candidate.scannedAt, std::chrono::system_clock::now());
}

TEST(CleanupCandidate, OfAPathThatDoesNotExistHasNoFingerprint) {
    const TemporaryFolder folder;
    const CleanupCandidate candidate = candidateFor(folder / "missing.log");
    EXPECT_EQ(candidate.url, folder / "missing.log");
    EXPECT_EQ(candidate.scannedModificationDate, std::nullopt);
    EXPECT_EQ(candidate.scannedResourceIdentifier, std::nullopt);
    EXPECT_EQ(candidate.scannedVolumeIdentifier, std::nullopt);
    EXPECT_FALSE(candidate.uiID.empty());
}

TEST(CleanupCandidate, TakesAFingerprintThatWasReadBefore) {
    const CleanupCandidate candidate = madeUpCandidate();
    EXPECT_EQ(candidate.url, "/home/old.log");
    EXPECT_EQ(candidate.title, "old.log");
    EXPECT_EQ(candidate.category, Category::log);
    EXPECT_EQ(candidate.reason, "Not changed for 40 days");
    EXPECT_EQ(candidate.size, 4096);
    EXPECT_EQ(candidate.confidence, Confidence::suggested);
    EXPECT_EQ(candidate.scannedModificationDate, at(1));
    EXPECT_EQ(candidate.scannedResourceIdentifier, "file");
    EXPECT_EQ(candidate.scannedVolumeIdentifier, "volume");
    EXPECT_EQ(candidate.scannedAt, at(2));
}

TEST(CleanupCandidate, TwoForOneFileShareTheirIdAndAreDifferent) {
    const TemporaryFolder folder;
    writeFile(folder / "old.log", "text");
    const CleanupCandidate one = candidateFor(folder / "old.log");
    const CleanupCandidate other = candidateFor(folder / "old.log");
    EXPECT_EQ(one.id(), other.id());
    EXPECT_NE(one.uiID, other.uiID);
    EXPECT_NE(one, other);
}

TEST(CleanupCandidate, ItsIdIsTheStandardizedPathAndThatOfALinkItself) {
    EXPECT_EQ(candidateFor("/home//me/./Downloads/../Library/Logs/old.log").id(), "/home/me/Library/Logs/old.log");
    EXPECT_EQ(candidateFor("/Applications/Install macOS.app/").id(), "/Applications/Install macOS.app");
    EXPECT_EQ(candidateFor("/a/\xff").id(), "/a/\xff");
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    std::filesystem::create_symlink(folder / "file", folder / "link");
    EXPECT_EQ(candidateFor(folder / "link").id(), (folder / "link").native());
}

TEST(CleanupCandidate, MovesToTheTrashInFourCategoriesOnly) {
    const std::set trashed = {Category::log, Category::crashReport, Category::installer, Category::interruptedDownload};
    for (const auto& row : allCleanupCategories) {
        const CleanupCandidate candidate = candidateFor("/missing", row.value);
        EXPECT_EQ(candidate.canMoveToTrash(), trashed.contains(row.value)) << row.rawValue;
        EXPECT_EQ(candidate.removalDisposition(), row.removalDisposition) << row.rawValue;
        EXPECT_EQ(candidate.canMoveToTrash(), candidate.removalDisposition() == RemovalDisposition::directTrash);
    }
}

TEST(CleanupCandidate, ACopyIsEqualAndHasTheSameHash) {
    const CleanupCandidate candidate = madeUpCandidate();
    const std::vector<CleanupCandidate> copies(2, candidate);
    EXPECT_EQ(copies[1], candidate);
    EXPECT_EQ(std::hash<CleanupCandidate>()(copies[1]), std::hash<CleanupCandidate>()(candidate));
    EXPECT_EQ(std::unordered_set<CleanupCandidate>(copies.begin(), copies.end()).size(), 1U);
}

TEST(CleanupCandidate, EveryFieldCountsForEqualityAndHash) {
    const std::vector<std::function<void(CleanupCandidate&)>> changes = {
        [](CleanupCandidate& candidate) { candidate.uiID = "another"; },
        [](CleanupCandidate& candidate) { candidate.url = "/home/new.log"; },
        [](CleanupCandidate& candidate) { candidate.title = "new.log"; },
        [](CleanupCandidate& candidate) { candidate.category = Category::cache; },
        [](CleanupCandidate& candidate) { candidate.reason = "Not changed for 41 days"; },
        [](CleanupCandidate& candidate) { candidate.size = 4097; },
        [](CleanupCandidate& candidate) { candidate.confidence = Confidence::review; },
        [](CleanupCandidate& candidate) { candidate.scannedModificationDate = at(3); },
        [](CleanupCandidate& candidate) { candidate.scannedModificationDate = std::nullopt; },
        [](CleanupCandidate& candidate) { candidate.scannedResourceIdentifier = "other file"; },
        [](CleanupCandidate& candidate) { candidate.scannedResourceIdentifier = std::nullopt; },
        [](CleanupCandidate& candidate) { candidate.scannedVolumeIdentifier = "other volume"; },
        [](CleanupCandidate& candidate) { candidate.scannedVolumeIdentifier = std::nullopt; },
        [](CleanupCandidate& candidate) { candidate.scannedAt = at(4); },
    };
    const CleanupCandidate candidate = madeUpCandidate();
    for (std::size_t i = 0; i < changes.size(); ++i) {
        CleanupCandidate changed = candidate;
        changes[i](changed);
        EXPECT_NE(changed, candidate) << i;
        EXPECT_NE(std::hash<CleanupCandidate>()(changed), std::hash<CleanupCandidate>()(candidate)) << i;
    }
}

TEST(CleanupCandidate, ItsUiIdIsARandomUuid) {
    EXPECT_THAT(madeUpCandidate().uiID,
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
}

} // namespace vantry
