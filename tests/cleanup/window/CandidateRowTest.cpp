#include "cleanup/window/CandidateRow.h"
#include "tests/cleanup/window/Candidates.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

using Kind = CandidateRowContent::Kind;

TEST(CandidateRow, SaysByCategoryWhatMayBeDone) {
    struct Case {
        CleanupCategory category;
        Kind kind;
    };
    using enum CleanupCategory;
    for (const auto& [category, kind] :
         {Case{cache, Kind::review}, Case{log, Kind::lowRisk}, Case{crashReport, Kind::lowRisk},
          Case{installer, Kind::lowRisk}, Case{archive, Kind::review}, Case{interruptedDownload, Kind::lowRisk},
          Case{largeDownload, Kind::review}, Case{macOSInstaller, Kind::review}, Case{orphan, Kind::review},
          Case{developerBuild, Kind::review}, Case{developerCache, Kind::review},
          Case{developerArchive, Kind::protectedItem}, Case{deviceBackup, Kind::protectedItem},
          Case{deviceSoftware, Kind::review}}) {
        SCOPED_TRACE(rawValue(category));
        const auto row = candidateRow(candidateAt("/x/y", category), true);
        EXPECT_EQ(row.kind, kind);
        EXPECT_EQ(row.selected, kind == Kind::lowRisk) << "nothing else can be selected";
        EXPECT_EQ(row.symbolName, kind == Kind::lowRisk ? "" : kind == Kind::review ? "eye.fill" : "lock.shield.fill");
        EXPECT_EQ(row.badge, kind == Kind::lowRisk  ? "Low Risk"
                             : kind == Kind::review ? "Review in Finder"
                                                    : "Protected");
        EXPECT_EQ(row.badgeColor, kind == Kind::lowRisk  ? SystemColor::green
                                  : kind == Kind::review ? SystemColor::orange
                                                         : SystemColor::blue);
        EXPECT_EQ(row.note, kind == Kind::lowRisk ? "" : "Review in Finder. This item cannot be selected here.");
        EXPECT_EQ(row.selectionAccessibilityLabel, kind == Kind::lowRisk ? "Select low-risk file y" : "");
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
    EXPECT_EQ(row.path, "/home/ada/Library/Logs/painter.log");
    EXPECT_EQ(row.revealAccessibilityLabel, "Reveal painter.log in Finder");
    EXPECT_EQ(candidateRow(logAt("/a", 0), false).sizeText, "Uses 0 B");
}

TEST(CandidateRow, AStrangeNameStaysOneLineOfText) {
    const auto row = candidateRow(logAt("/l/two\nlines\xff.log"), false);
    EXPECT_EQ(row.title, "two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.path, "/l/two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.selectionAccessibilityLabel, "Select low-risk file two\xef\xbf\xbdlines\xef\xbf\xbd.log");
    EXPECT_EQ(row.revealAccessibilityLabel, "Reveal two\xef\xbf\xbdlines\xef\xbf\xbd.log in Finder");
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
