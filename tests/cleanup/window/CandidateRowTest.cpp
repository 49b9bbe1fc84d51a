#include "cleanup/window/CandidateRow.h"
#include "tests/cleanup/window/Candidates.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

using RowKind = CandidateRowContent::Kind;

TEST(CandidateRow, SaysByCategoryWhatMayBeDone) {
    struct Case {
        CleanupCategory category;
        RowKind kind;
    };
    using enum CleanupCategory;
    for (const auto& [category, kind] :
         {Case{cache, RowKind::review}, Case{log, RowKind::lowRisk}, Case{crashReport, RowKind::lowRisk},
          Case{installer, RowKind::lowRisk}, Case{archive, RowKind::review},
          Case{interruptedDownload, RowKind::lowRisk}, Case{largeDownload, RowKind::review},
          Case{macOSInstaller, RowKind::review}, Case{orphan, RowKind::review}, Case{developerBuild, RowKind::review},
          Case{developerCache, RowKind::review}, Case{developerArchive, RowKind::protectedItem},
          Case{deviceBackup, RowKind::protectedItem}, Case{deviceSoftware, RowKind::review}}) {
        SCOPED_TRACE(rawValue(category));
        const auto row = candidateRow(candidateAt("/x/y", category), true);
        EXPECT_EQ(row.kind, kind);
        EXPECT_EQ(row.selected, kind == RowKind::lowRisk) << "nothing else can be selected";
        EXPECT_EQ(row.symbolName, kind == RowKind::lowRisk  ? ""
                                  : kind == RowKind::review ? "eye.fill"
                                                            : "lock.shield.fill");
        EXPECT_EQ(row.badge, kind == RowKind::lowRisk  ? "Low Risk"
                             : kind == RowKind::review ? "Review in Finder"
                                                       : "Protected");
        EXPECT_EQ(row.badgeColor, kind == RowKind::lowRisk  ? SystemColor::green
                                  : kind == RowKind::review ? SystemColor::orange
                                                            : SystemColor::blue);
        EXPECT_EQ(row.note, kind == RowKind::lowRisk ? "" : "Review in Finder. This item cannot be selected here.");
        EXPECT_EQ(row.selectionAccessibilityLabel, kind == RowKind::lowRisk ? "Select low-risk file y" : "");
    }
}

TEST(CandidateRow, TellsTheItem) {
    auto candidate = logAt("/home/ada/Library/Logs/painter.log", 1'500'000);
    candidate.reason = "Not modified in 30 days";
    const auto row = candidateRow(candidate, false);
    EXPECT_EQ(row.identifier, "candidate-" + candidate.uiID);
    EXPECT_FALSE(row.selected);
    EXPECT_EQ(row.title, "painter.log");
    EXPECT_EQ(row.reason, "Not modified in 30 days");
    EXPECT_EQ(row.sizeText, "Uses 1.5 MB");
    EXPECT_EQ(row.tooltip, "/home/ada/Library/Logs/painter.log");
    EXPECT_EQ(row.revealAccessibilityLabel, "Reveal painter.log in Finder");
    EXPECT_EQ(candidateRow(logAt("/a", 0), false).sizeText, "Uses 0 B");
}

TEST(CandidateRow, AStrangeNameStaysOneLineOfText) {
    const auto row = candidateRow(logAt("/l/two\nlines\xff.log"), false);
    EXPECT_EQ(row.title, "two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.tooltip, "/l/two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.selectionAccessibilityLabel, "Select low-risk file two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.revealAccessibilityLabel, "Reveal two\xef\xbf\xbdlines\xef\xbf\xbd.log in Finder");
}

TEST(CandidateRow, ASizeThatIsALowerBoundIsCalledOneBesideTheUsualText) {
    const auto candidate = logAt("/a", 1'500'000);
    const auto whole = candidateRow(candidate, true, false);
    EXPECT_EQ(whole.sizeDetail, "");
    EXPECT_EQ(whole.tooltip, "/a");
    const auto row = candidateRow(candidate, true, true);
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
