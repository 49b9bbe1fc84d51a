#include "cleanup/window/CandidateRow.h"
#include "tests/support/Candidates.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

TEST(CandidateRow, ShowsByCategoryWhatMayBeDone) {
    for (const auto& category : allCleanupCategories) {
        SCOPED_TRACE(category.rawValue);
        const bool isLowRisk = category.removalDisposition == CleanupRemovalDisposition::directTrash;
        const bool isReview = category.removalDisposition == CleanupRemovalDisposition::reviewOnly;
        const auto row = candidateRow(candidateAt("/x/y", category.value), true, HostSystem::macOS);
        EXPECT_EQ(row.selected, isLowRisk) << "nothing else can be selected";
        EXPECT_EQ(row.symbolName, isLowRisk ? "" : isReview ? "eye.fill" : "lock.shield.fill");
        EXPECT_EQ(row.badge, isLowRisk ? "Low Risk" : isReview ? "Review in Finder" : "Protected");
        EXPECT_EQ(row.badgeColor, isLowRisk ? SystemColor::green : isReview ? SystemColor::orange : SystemColor::blue);
        EXPECT_EQ(row.note, isLowRisk ? "" : "Review in Finder. This item cannot be selected here.");
        EXPECT_EQ(row.selectionAccessibilityLabel, isLowRisk ? "Select low-risk file y" : "");
    }
}

TEST(CandidateRow, ShowsTheItem) {
    auto candidate = logAt("/home/ada/Library/Logs/painter.log", 1'500'000);
    candidate.reason = "Not modified in 30 days";
    const auto row = candidateRow(candidate, false, HostSystem::macOS);
    EXPECT_EQ(row.identifier, "candidate-" + candidate.uiID);
    EXPECT_FALSE(row.selected);
    EXPECT_EQ(row.title, "painter.log");
    EXPECT_EQ(row.reason, "Not modified in 30 days");
    EXPECT_EQ(row.sizeText, "Uses 1.5 MB");
    EXPECT_EQ(row.tooltip, "/home/ada/Library/Logs/painter.log");
    EXPECT_EQ(row.revealAccessibilityLabel, "Reveal painter.log in Finder");
    EXPECT_EQ(candidateRow(logAt("/a", 0), false, HostSystem::macOS).sizeText, "Uses 0 B");
}

TEST(CandidateRow, AStrangeNameStaysOneLineOfText) {
    const auto row = candidateRow(logAt("/l/two\nlines\xff.log"), false, HostSystem::macOS);
    EXPECT_EQ(row.title, "two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.tooltip, "/l/two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.selectionAccessibilityLabel, "Select low-risk file two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.revealAccessibilityLabel, "Reveal two\xef\xbf\xbdlines\xef\xbf\xbd.log in Finder");
}

TEST(CandidateRow, ALowerBoundIsExplainedBesideTheUsualSize) {
    const auto candidate = logAt("/a", 1'500'000);
    const auto whole = candidateRow(candidate, true, HostSystem::macOS, false);
    EXPECT_EQ(whole.sizeDetail, "");
    EXPECT_EQ(whole.tooltip, "/a");
    const auto row = candidateRow(candidate, true, HostSystem::macOS, true);
    EXPECT_EQ(row.sizeText, "Uses 1.5 MB");
    EXPECT_EQ(row.sizeDetail, "At least 1.5 MB; measuring stopped early");
    EXPECT_EQ(row.tooltip, "/a\nAt least 1.5 MB; measuring stopped early");
}

TEST(CandidateRow, AnIdentifierBelongsToOneCandidate) {
    const auto first = logAt("/a");
    const auto second = logAt("/a");
    EXPECT_TRUE(isControlOf(first, controlIdentifier(first)));
    EXPECT_FALSE(isControlOf(first, controlIdentifier(second)));
    for (const auto& other : {std::string(), std::string("candidate-"), first.uiID, "Candidate-" + first.uiID,
                              "candidate-" + first.uiID + " ", "candidate-candidate-" + first.uiID})
        EXPECT_FALSE(isControlOf(first, other)) << other;
}

} // namespace

} // namespace vantry
