#include "tests/apple/appkit/LayoutSolver.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <ranges>

namespace vantry {

namespace {

constexpr double tolerance = 1e-6;
constexpr double requiredPriority = 1000;

bool isZero(double value) { return std::abs(value) < tolerance; }

/// A constant and variables with factors.
struct Sum {
    double constant = 0;
    std::map<int, double> terms;

    void add(int variable, double factor) {
        const auto [place, isNew] = terms.emplace(variable, factor);
        if (!isNew)
            place->second += factor;
        if (isZero(place->second))
            terms.erase(place);
    }
    void add(const Sum& other, double factor) {
        constant += other.constant * factor;
        for (const auto& [variable, each] : other.terms)
            add(variable, each * factor);
    }
    [[nodiscard]] double factorOf(int variable) const {
        const auto found = terms.find(variable);
        return found == terms.end() ? 0 : found->second;
    }
    void replace(int variable, const Sum& by) {
        if (const double factor = factorOf(variable); factor != 0) {
            terms.erase(variable);
            add(by, factor);
        }
    }
    /// This sum is 0: what `variable` is then, in terms of the others.
    [[nodiscard]] Sum solvedFor(int variable) const {
        Sum solved;
        const double factor = factorOf(variable);
        solved.constant = -constant / factor;
        for (const auto& [each, eachFactor] : terms)
            if (each != variable)
                solved.terms.emplace(each, -eachFactor / factor);
        return solved;
    }
};

/// Variables that a required equation gives in terms of others.
class Definitions {
public:
    explicit Definitions(const std::vector<bool>& nonNegative)
        : nonNegative_(nonNegative),
          definitions_(nonNegative.size()) {}

    /// Whether the sum can be 0.
    bool setToZero(const Sum& sum) {
        const Sum free = resolved(sum);
        if (free.terms.empty())
            return isZero(free.constant);
        const auto isPosition = [this](const auto& term) {
            return !nonNegative_[static_cast<std::size_t>(term.first)];
        };
        auto pivot = std::ranges::find_if(free.terms, isPosition);
        if (pivot == free.terms.end())
            pivot = free.terms.begin(); // the outer of two views, which becomes a sum of what is in it
        definitions_[static_cast<std::size_t>(pivot->first)] = free.solvedFor(pivot->first);
        return true;
    }
    [[nodiscard]] bool defines(int variable) const {
        return definitions_[static_cast<std::size_t>(variable)].has_value();
    }
    /// In terms of variables that have no definition.
    Sum resolved(const Sum& sum) {
        Sum free{sum.constant, {}};
        for (const auto& [variable, factor] : sum.terms) {
            auto& definition = definitions_[static_cast<std::size_t>(variable)];
            if (!definition) {
                free.add(variable, factor);
                continue;
            }
            *definition = resolved(*definition);
            free.add(*definition, factor);
        }
        return free;
    }

private:
    const std::vector<bool>& nonNegative_;
    std::vector<std::optional<Sum>> definitions_;
};

/// Rules that have variables in common, solved by the simplex algorithm: one priority after the other, each without
/// giving up what those above it reached.
class Group {
public:
    explicit Group(int variableCount) : firstError_(variableCount), next_(variableCount) {}

    /// The rules of the next lower priority: how far each one cannot be kept.
    std::vector<double> addLevel(const std::vector<std::pair<Sum, LayoutRelation>>& rules) {
        std::vector<std::pair<int, int>> errors; // of each rule: below and above
        Sum cost;
        for (const auto& [sum, relation] : rules) {
            Sum row{sum.constant, {}};
            for (const auto& [variable, factor] : sum.terms)
                addResolved(row, variable, factor);
            const int below = next_++;
            const int above = next_++;
            row.add(below, 1);
            row.add(above, -1);
            errors.emplace_back(below, above);
            if (relation != LayoutRelation::atMost)
                addCost(cost, below);
            if (relation != LayoutRelation::atLeast)
                addCost(cost, above);
            const auto external =
                std::ranges::find_if(row.terms, [this](auto& term) { return term.first < firstError_; });
            const int basic = external != row.terms.end() ? external->first : row.constant < 0 ? below : above;
            makeBasic(basic, row.solvedFor(basic), cost);
        }
        minimize(cost);
        for (const auto& [variable, factor] : cost.terms) // what would cost something stays 0 from here on
            for (auto& [basic, row] : rows_)
                row.terms.erase(variable);
        std::vector<double> distances;
        for (std::size_t index = 0; index < rules.size(); ++index) {
            const auto [below, above] = errors[index];
            const LayoutRelation relation = rules[index].second;
            distances.push_back((relation != LayoutRelation::atMost ? value(below) : 0) +
                                (relation != LayoutRelation::atLeast ? value(above) : 0));
        }
        return distances;
    }

    [[nodiscard]] std::size_t steps() const { return steps_; }

    [[nodiscard]] double value(int variable) const {
        const auto found = rows_.find(variable);
        return found == rows_.end() ? 0 : found->second.constant;
    }

    /// Whether another value is as good.
    [[nodiscard]] bool isAmbiguous(int variable) const {
        const auto found = rows_.find(variable);
        return found == rows_.end() || std::ranges::any_of(found->second.terms, [this](const auto& term) {
                   return term.first < firstError_ || canGrow(term.first);
               });
    }

private:
    void addResolved(Sum& row, int variable, double factor) const {
        if (const auto found = rows_.find(variable); found != rows_.end())
            row.add(found->second, factor);
        else
            row.add(variable, factor);
    }
    void addCost(Sum& cost, int variable) const { addResolved(cost, variable, 1); }

    void makeBasic(int variable, Sum row, Sum& cost) {
        steps_ += rows_.size();
        for (auto& [basic, each] : rows_)
            each.replace(variable, row);
        cost.replace(variable, row);
        rows_[variable] = std::move(row);
    }

    /// How far a variable that is 0 may grow before another one would be negative, and which one.
    [[nodiscard]] std::pair<double, int> limitOf(int variable) const {
        std::pair<double, int> limit{std::numeric_limits<double>::infinity(), -1};
        for (const auto& [basic, row] : rows_)
            if (const double factor = row.factorOf(variable); basic >= firstError_ && factor < -tolerance)
                limit = std::min(limit, {-row.constant / factor, basic});
        return limit;
    }
    [[nodiscard]] bool canGrow(int variable) const { return limitOf(variable).first > tolerance; }

    void minimize(Sum& cost) {
        const auto pays = [](const auto& term) { return term.second < -tolerance; };
        for (auto entering = std::ranges::find_if(cost.terms, pays); entering != cost.terms.end();
             entering = std::ranges::find_if(cost.terms, pays)) {
            const int variable = entering->first; // the first one: it cannot go round in circles
            const int leaving = limitOf(variable).second;
            if (leaving < 0)
                return; // costs are not negative, so there always is one
            Sum row = std::move(rows_.extract(leaving).mapped());
            row.add(leaving, -1);
            makeBasic(variable, row.solvedFor(variable), cost);
        }
    }

    std::size_t steps_ = 0;
    std::map<int, Sum> rows_; ///< what the variables that are not 0 consist of
    int firstError_;          ///< from here on, variables are not negative
    int next_;
};

/// Sets of variables that grow together.
class Sets {
public:
    explicit Sets(std::size_t count) : parents_(count) { std::iota(parents_.begin(), parents_.end(), 0); }

    int find(int variable) {
        int& parent = parents_[static_cast<std::size_t>(variable)];
        return parent == variable ? variable : parent = find(parent);
    }
    void join(const Sum& sum) {
        for (const auto& [variable, factor] : sum.terms)
            parents_[static_cast<std::size_t>(find(variable))] = find(sum.terms.begin()->first);
    }

private:
    std::vector<int> parents_;
};

struct OpenRule {
    Sum sum;
    LayoutRelation relation;
    double priority;
    std::optional<std::size_t> index; ///< among the rules; absent where a variable is to be at least 0
};

bool isKept(double sum, LayoutRelation relation) {
    return (relation == LayoutRelation::atLeast || sum < tolerance) &&
           (relation == LayoutRelation::atMost || sum > -tolerance);
}

void solveGroup(const std::vector<OpenRule>& rules, std::vector<bool>& ambiguous, LayoutAnswer& answer) {
    std::map<int, int> numbers;
    std::map<double, std::vector<const OpenRule*>, std::greater<>> levels;
    for (const OpenRule& rule : rules) {
        levels[rule.priority].push_back(&rule);
        for (const auto& [variable, factor] : rule.sum.terms)
            numbers.emplace(variable, static_cast<int>(numbers.size()));
    }
    Group group(static_cast<int>(numbers.size()));
    for (const auto& [priority, level] : levels) {
        std::vector<std::pair<Sum, LayoutRelation>> local;
        for (const OpenRule* rule : level) {
            Sum sum{rule->sum.constant, {}};
            for (const auto& [variable, factor] : rule->sum.terms)
                sum.terms.emplace(numbers.at(variable), factor);
            local.emplace_back(std::move(sum), rule->relation);
        }
        const std::vector<double> distances = group.addLevel(local);
        for (std::size_t index = 0; index < level.size(); ++index)
            if (priority >= requiredPriority && level[index]->index && !isZero(distances[index]))
                answer.conflicts.push_back(*level[index]->index);
    }
    answer.steps += group.steps();
    for (const auto& [variable, number] : numbers) {
        answer.values[static_cast<std::size_t>(variable)] = group.value(number);
        ambiguous[static_cast<std::size_t>(variable)] = group.isAmbiguous(number);
    }
}

} // namespace

LayoutAnswer solveLayout(const std::vector<bool>& nonNegative, const std::vector<LayoutRule>& rules) {
    LayoutAnswer answer;
    Definitions definitions(nonNegative);
    const auto sumOf = [](const LayoutRule& rule) {
        Sum sum{rule.constant, {}};
        for (const auto& [variable, factor] : rule.terms)
            sum.add(variable, factor);
        return sum;
    };
    const auto isEquation = [](const LayoutRule& rule) {
        return rule.relation == LayoutRelation::equal && rule.priority >= requiredPriority;
    };
    for (std::size_t index = 0; index < rules.size(); ++index)
        if (isEquation(rules[index]) && !definitions.setToZero(sumOf(rules[index])))
            answer.conflicts.push_back(index);

    std::vector<OpenRule> open;
    Sets sets(nonNegative.size());
    const auto add = [&](Sum sum, LayoutRelation relation, double priority, std::optional<std::size_t> index) {
        if (sum.terms.empty()) {
            if (priority >= requiredPriority && !isKept(sum.constant, relation))
                answer.conflicts.push_back(index.value_or(rules.size()));
            return;
        }
        sets.join(sum);
        open.push_back({std::move(sum), relation, priority, index});
    };
    for (std::size_t index = 0; index < rules.size(); ++index)
        if (!isEquation(rules[index]))
            add(definitions.resolved(sumOf(rules[index])), rules[index].relation, rules[index].priority, index);
    for (int variable = 0; variable < static_cast<int>(nonNegative.size()); ++variable) {
        if (!nonNegative[static_cast<std::size_t>(variable)])
            continue;
        Sum sum = definitions.resolved({0, {{variable, 1}}});
        // A sum of what is not negative says nothing new, and would put everything into one group.
        const bool isImplied =
            definitions.defines(variable) && sum.constant >= 0 && std::ranges::all_of(sum.terms, [&](const auto& term) {
                return term.second > 0 && nonNegative[static_cast<std::size_t>(term.first)];
            });
        if (!isImplied)
            add(std::move(sum), LayoutRelation::atLeast, requiredPriority, std::nullopt);
    }

    std::map<int, std::vector<OpenRule>> groups;
    for (OpenRule& rule : open)
        groups[sets.find(rule.sum.terms.begin()->first)].push_back(std::move(rule));
    answer.values.resize(nonNegative.size());
    std::vector<bool> ambiguous(nonNegative.size(), true);
    for (const auto& [set, members] : groups)
        solveGroup(members, ambiguous, answer);
    for (int variable = 0; variable < static_cast<int>(nonNegative.size()); ++variable) {
        const Sum sum = definitions.resolved({0, {{variable, 1}}});
        double value = sum.constant;
        for (const auto& [free, factor] : sum.terms)
            value += factor * answer.values[static_cast<std::size_t>(free)];
        if (std::ranges::any_of(sum.terms, [&](auto& term) { return ambiguous[static_cast<std::size_t>(term.first)]; }))
            answer.ambiguous.push_back(variable);
        if (definitions.defines(variable))
            answer.values[static_cast<std::size_t>(variable)] = value;
    }
    return answer;
}

} // namespace vantry
