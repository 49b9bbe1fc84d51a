#pragma once

#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/appkit/LayoutSolver.h"

#include <map>
#include <string>
#include <vector>

namespace vantry::apple {

/// Places everything in `root`, which is `size` large. What cannot be satisfied, is left open, is cut off, reaches out
/// of what holds it or cannot be clicked becomes a complaint. How much work it was, in steps of the solver.
std::size_t layOut(NSView* root, NSSize size);

/// The rules of all views below a root along one axis. A view has two variables: how far its beginning is from that of
/// its superview, and its size.
class LayoutBuilder {
public:
    LayoutBuilder(NSView* root, CGFloat size, Axis axis);

    /// `one` relates to `two`, or to nothing, at a distance. Views that take no part are passed over.
    void add(NSView* one, LayoutSide sideOne, LayoutRelation relation, NSView* two, LayoutSide sideTwo, double constant,
             double priority, const char* reason);

    /// Writes the places into the views and complains about what could not be done. The steps that it took.
    std::size_t solve();

private:
    struct Source {
        __unsafe_unretained NSView* one;
        __unsafe_unretained NSView* two;
        const char* reason;
    };

    void collect(NSView* view);
    void addRulesOf(NSView* view);
    /// Where a side of `view` is in `holder`.
    void addTerms(LayoutRule& rule, NSView* view, LayoutSide side, double factor, NSView* holder) const;
    [[nodiscard]] bool has(NSView* view) const { return numbers_.contains((__bridge const void*)view); }
    [[nodiscard]] int numberOf(NSView* view) const { return numbers_.at((__bridge const void*)view); }

    NSView* root_;
    Axis axis_;
    std::vector<NSView*> views_;
    std::map<const void*, int> numbers_;
    std::vector<LayoutRule> rules_;
    std::vector<Source> sources_;
};

} // namespace vantry::apple
