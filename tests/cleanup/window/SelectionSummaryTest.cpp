#include "cleanup/window/SummaryTexts.h"
#include "tests/support/Candidates.h"

#include <gtest/gtest.h>
#include <limits>

namespace vantry {

namespace {

constexpr auto mostBytes = std::numeric_limits<std::int64_t>::max();

TEST(SelectionSummary, CountsSelectedLowRiskFilesOnly) {
    const std::vector candidates{logAt("/l/a", 1000), logAt("/l/b", 20), candidateAt("/c/z", CleanupCategory::cache, 5),
                                 candidateAt("/d/k", CleanupCategory::deviceBackup, 5),
                                 candidateAt("/d/i", CleanupCategory::installer, 300)};
    struct Case {
        SelectedPaths selected;
        CandidateTotal total;
    };
    for (const auto& [selected, total] : {Case{{}, {0, 0}},
                                          {{"/l/a"}, {1, 1000}},
                                          {{"/l/a", "/d/i"}, {2, 1300}},
                                          {{"/c/z", "/d/k"}, {0, 0}},
                                          {{"/l/b", "/c/z", "/nothing"}, {1, 20}}})
        EXPECT_EQ(selectedTotal(candidates, selected), total) << testing::PrintToString(selected);
}

TEST(SelectionSummary, ATotalStaysAtTheLargestValue) {
    const std::vector candidates{logAt("/a", mostBytes), logAt("/b", 1), logAt("/c", mostBytes)};
    EXPECT_EQ(totalOf(candidates), (CandidateTotal{3, mostBytes}));
    EXPECT_EQ(selectedTotal(candidates, {"/a", "/b"}), (CandidateTotal{2, mostBytes}));
    EXPECT_EQ(totalOf({}), CandidateTotal());
}

TEST(SelectionSummary, IsOneLine) {
    EXPECT_EQ(selectionText({0, 0}), "Nothing selected · Only low-risk files can be selected");
    EXPECT_EQ(selectionText({1, 0}), "1 selected · 0 B will move to Trash");
    EXPECT_EQ(selectionText({2, 3'000}), "2 selected · 3 KB will move to Trash");
    EXPECT_EQ(selectionText({400, 1'500'000'000}), "400 selected · 1.5 GB will move to Trash");
}

} // namespace

} // namespace vantry
