#include "tests/apple/appkit/LayoutSolver.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

using enum LayoutRelation;

LayoutAnswer solve(std::size_t variables, const std::vector<LayoutRule>& rules) {
    return solveLayout(std::vector<bool>(variables, true), rules);
}

} // namespace

TEST(LayoutSolver, EquationsAreSolved) {
    const auto answer = solve(3, {{{{0, 1}}, -10}, {{{1, 1}, {0, -1}}, -5}, {{{2, 1}, {0, 0.5}, {1, -1}}}});
    EXPECT_EQ(answer.values, (std::vector<double>{10, 15, 10}));
    EXPECT_TRUE(answer.conflicts.empty());
    EXPECT_TRUE(answer.ambiguous.empty());
}

TEST(LayoutSolver, AHigherPriorityWinsWhateverTheDistance) {
    const auto answer =
        solve(1, {{{{0, 1}}, -1000, equal, 250}, {{{0, 1}}, -20, equal, 251}, {{{0, 1}}, -900, atLeast, 249}});
    EXPECT_DOUBLE_EQ(answer.values[0], 20);
    EXPECT_TRUE(answer.conflicts.empty());
}

TEST(LayoutSolver, ALowerPriorityDecidesWhatAHigherOneLeavesOpen) {
    // At most 100, as wide as its text where there is room.
    const auto answer = solve(2, {{{{0, 1}, {1, 1}}, -100},
                                  {{{0, 1}}, -80, atLeast, 750},
                                  {{{0, 1}}, -80, atMost, 251},
                                  {{{1, 1}}, -60, atLeast, 250},
                                  {{{1, 1}}, -60, atMost, 250}});
    EXPECT_DOUBLE_EQ(answer.values[0], 80);
    EXPECT_DOUBLE_EQ(answer.values[1], 20);
    EXPECT_TRUE(answer.ambiguous.empty());
}

TEST(LayoutSolver, RequiredRulesThatCannotBeKeptAreReported) {
    EXPECT_EQ(solve(1, {{{{0, 1}}, -10}, {{{0, 1}}, -11}}).conflicts, (std::vector<std::size_t>{1}));
    EXPECT_EQ(solve(1, {{{{0, 1}}, -10}, {{{0, 1}}, -11, atLeast}}).conflicts, (std::vector<std::size_t>{1}));
    EXPECT_EQ(solve(2, {{{{0, 1}, {1, 1}}, -10}, {{{0, 1}}, -8, atLeast}, {{{1, 1}}, -8, atLeast}}).conflicts.size(),
              1U);
    EXPECT_TRUE(
        solve(2, {{{{0, 1}, {1, 1}}, -10}, {{{0, 1}}, -8, atLeast}, {{{1, 1}}, -2, atLeast}}).conflicts.empty());
    EXPECT_EQ(solve(1, {{{{0, 1}}, 10}}).conflicts.size(), 1U) << "a width below 0";
}

TEST(LayoutSolver, WhatCouldHaveAnotherValueIsReported) {
    EXPECT_EQ(solve(1, {}).ambiguous, std::vector<int>{0});
    EXPECT_EQ(solve(2, {{{{0, 1}, {1, -1}}, -5}}).ambiguous, (std::vector<int>{0, 1}));
    EXPECT_EQ(solve(2, {{{{0, 1}, {1, 1}}, -10}, {{{0, 1}}, -10, equal, 250}, {{{1, 1}}, -10, equal, 250}}).ambiguous,
              (std::vector<int>{0, 1}))
        << "two of the same priority";
    EXPECT_TRUE(solve(2, {{{{0, 1}, {1, 1}}, -10}, {{{0, 1}}, -10, equal, 250}, {{{1, 1}}, -10, equal, 251}})
                    .ambiguous.empty());
}

TEST(LayoutSolver, TheWorkGrowsWithTheNumberOfRowsAndNotWithItsSquare) {
    // Rows below each other: a position and a height each, as high as the text and not lower than 54.
    constexpr int count = 1000;
    std::vector<bool> nonNegative;
    std::vector<LayoutRule> rules;
    for (int row = 0; row < count; ++row) {
        const int top = 2 * row;
        const int height = top + 1;
        nonNegative.insert(nonNegative.end(), {false, true});
        rules.push_back({{{top, 1}}, 0});
        if (row > 0)
            rules.back().terms.insert(rules.back().terms.end(), {{top - 2, -1}, {top - 1, -1}});
        rules.push_back({{{height, 1}}, -54, atLeast});
        rules.push_back({{{height, 1}}, -54, equal, 250});
        rules.push_back({{{height, 1}}, -10.0 - row % 100, atLeast, 750});
    }
    const auto answer = solveLayout(nonNegative, rules);
    EXPECT_LT(answer.steps, 20U * count);
    EXPECT_DOUBLE_EQ(answer.values[3], 54);
    EXPECT_DOUBLE_EQ(answer.values[199], 109);
    EXPECT_TRUE(answer.ambiguous.empty());
}

} // namespace vantry
