#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace vantry {

enum class LayoutRelation { atMost, equal, atLeast };

/// The sum of the terms (a variable and its factor) and the constant is 0, at most 0 or at least 0.
struct LayoutRule {
    std::vector<std::pair<int, double>> terms;
    double constant = 0;
    LayoutRelation relation = LayoutRelation::equal;
    double priority = 1000; ///< from 1000 the rule is required
};

struct LayoutAnswer {
    std::vector<double> values;         ///< of the variables
    std::vector<std::size_t> conflicts; ///< the required rules that cannot be kept
    std::vector<int> ambiguous;         ///< the variables that could have another value
    std::size_t steps = 0;              ///< how much work it was: the rows of the tableau that were looked at
};

/// The values that break the rules of a higher priority least, before those of a lower one are looked at. Variables of
/// which `nonNegative` is true are at least 0. Required equations are solved by substitution, and what is left falls
/// apart into small groups of rules if the variables of a view come before those of the views in it. Then time grows
/// with the number of rules and not with its square.
[[nodiscard]] LayoutAnswer solveLayout(const std::vector<bool>& nonNegative, const std::vector<LayoutRule>& rules);

} // namespace vantry
