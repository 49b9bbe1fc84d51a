#include "tests/apple/appkit/Layout.h"

#include "tests/apple/runtime/Runtime.h"

#include <algorithm>

namespace vantry::apple {

namespace {

const double required = NSLayoutPriorityRequired;
constexpr double leastOverlap = 0.5; ///< less than a pixel is no mistake

bool isShown(NSView* view) {
    for (; view; view = view->_parent)
        if (view.hidden)
            return false;
    return true;
}

CGFloat& startOf(NSView* view, Axis axis) {
    return axis == Axis::horizontal ? view->_place.origin.x : view->_place.origin.y;
}

CGFloat& sizeOf(NSView* view, Axis axis) {
    return axis == Axis::horizontal ? view->_place.size.width : view->_place.size.height;
}

bool isOneOf(NSView* view, std::initializer_list<Class> classes) {
    return std::ranges::any_of(classes, [view](Class cls) { return [view isKindOfClass:cls]; });
}

void checkSize(NSView* view) {
    const NSSize content = [view contentSizeAtWidth:view->_place.size.width];
    if (content.height > view->_place.size.height + leastOverlap)
        complain(nameOf(view) + " is cut off below");
    const bool mayBeCut = [view isKindOfClass:[NSTextField class]] &&
                          static_cast<NSTextField*>(view).lineBreakMode != NSLineBreakByClipping;
    if (!mayBeCut && content.width > view->_place.size.width + leastOverlap)
        complain(nameOf(view) + " is cut off at the side");
}

void checkPlace(NSView* view) {
    const NSRect place = view->_place;
    const NSSize holder = view->_parent->_place.size;
    const bool scrolls = [view->_parent isKindOfClass:[NSClipView class]];
    if (place.origin.x < -leastOverlap || NSMaxX(place) > holder.width + leastOverlap ||
        (!scrolls && (place.origin.y < -leastOverlap || NSMaxY(place) > holder.height + leastOverlap)))
        complain(nameOf(view) + " reaches out of " + nameOf(view->_parent));
}

/// Scrolls back what the check scrolled.
void checkReach(NSView* control) {
    std::vector<std::pair<NSClipView*, CGFloat>> scrolled;
    for (NSView* each = control; each; each = each->_parent)
        if ([each isKindOfClass:[NSClipView class]])
            scrolled.emplace_back(static_cast<NSClipView*>(each), static_cast<NSClipView*>(each)->_scrolled);
    NSView* const hit = viewAtMiddle(control);
    if (hit != control)
        complain("a click on " + nameOf(control) + " reaches " + nameOf(hit));
    for (const auto& [clip, distance] : scrolled)
        clip->_scrolled = distance;
}

void check(NSView* root, NSView* view) {
    if ([view isKindOfClass:[NSClipView class]] && !static_cast<NSClipView*>(view)->_isReflected)
        complain("the scrollers were not told that something was scrolled");
    if (view != root) {
        checkSize(view);
        checkPlace(view);
        if (isOneOf(view, {[NSButton class], [NSSegmentedControl class]}))
            checkReach(view);
    }
    for (NSView* child : view->_children)
        if (!child.hidden)
            check(root, child);
}

} // namespace

LayoutBuilder::LayoutBuilder(NSView* root, CGFloat size, Axis axis) : root_(root), axis_(axis) {
    collect(root);
    add(root, LayoutSide::begin, LayoutRelation::equal, nil, {}, 0, required, "the root");
    add(root, LayoutSide::size, LayoutRelation::equal, nil, {}, size, required, "the root");
    for (NSView* view : views_)
        addRulesOf(view);
}

void LayoutBuilder::collect(NSView* view) {
    numbers_.emplace((__bridge const void*)view, static_cast<int>(views_.size()));
    views_.push_back(view);
    for (NSView* child : view->_children)
        if (!isDetached(child))
            collect(child);
}

void LayoutBuilder::addRulesOf(NSView* view) {
    for (NSLayoutConstraint* constraint : view->_installed) {
        if (constraint->_axis != axis_)
            continue;
        if (constraint->_one != root_ && constraint->_one.translatesAutoresizingMaskIntoConstraints)
            complain(nameOf(constraint->_one) + " has constraints, and its autoresizing mask makes others");
        add(constraint->_one, constraint->_sideOne, static_cast<LayoutRelation>(constraint->_relation + 1),
            constraint->_two, constraint->_sideTwo, constraint.constant, constraint.priority, "a constraint");
    }
    if (view != root_ && view.translatesAutoresizingMaskIntoConstraints) {
        add(view, LayoutSide::begin, LayoutRelation::equal, view->_parent, LayoutSide::begin, startOf(view, axis_),
            required, "the autoresizing mask");
        add(view, LayoutSide::size, LayoutRelation::equal, nil, {}, sizeOf(view, axis_), required,
            "the autoresizing mask");
    }
    const bool horizontal = axis_ == Axis::horizontal;
    const auto index = static_cast<std::size_t>(axis_);
    const NSSize content = [view contentSizeAtWidth:horizontal ? 0 : view->_place.size.width];
    const CGFloat size = horizontal ? content.width : content.height;
    if (size >= 0) {
        add(view, LayoutSide::size, LayoutRelation::atMost, nil, {}, size, view->_hugging[index], "hugging");
        add(view, LayoutSide::size, LayoutRelation::atLeast, nil, {}, size, view->_resistance[index], "resistance");
    }
    [view addRulesTo:*this along:axis_];
}

void LayoutBuilder::addTerms(LayoutRule& rule, NSView* view, LayoutSide side, double factor, NSView* holder) const {
    const int size = 2 * numberOf(view) + 1;
    if (side == LayoutSide::size) {
        rule.terms.emplace_back(size, factor);
        return;
    }
    for (NSView* each = view; each && each != holder; each = each->_parent)
        rule.terms.emplace_back(2 * numberOf(each), factor);
    if (side != LayoutSide::begin)
        rule.terms.emplace_back(size, side == LayoutSide::end ? factor : factor / 2);
}

void LayoutBuilder::add(NSView* one, LayoutSide sideOne, LayoutRelation relation, NSView* two, LayoutSide sideTwo,
                        double constant, double priority, const char* reason) {
    if (!has(one) || (two && !has(two)))
        return;
    LayoutRule rule{{}, -constant, relation, priority};
    NSView* const holder = two ? commonHolder(one, two) : nil; // farther up, both would be summed up for nothing
    addTerms(rule, one, sideOne, 1, holder);
    if (two)
        addTerms(rule, two, sideTwo, -1, holder);
    rules_.push_back(std::move(rule));
    sources_.push_back({one, two, reason});
}

std::size_t LayoutBuilder::solve() {
    std::vector<bool> isSize(2 * views_.size());
    for (std::size_t index = 1; index < isSize.size(); index += 2)
        isSize[index] = true;
    const LayoutAnswer answer = solveLayout(isSize, rules_);
    for (std::size_t index = 0; index < views_.size(); ++index) {
        startOf(views_[index], axis_) = answer.values[2 * index];
        sizeOf(views_[index], axis_) = answer.values[2 * index + 1];
    }
    const std::string axis = axis_ == Axis::horizontal ? "horizontally" : "vertically";
    for (const std::size_t conflict : answer.conflicts) {
        if (conflict >= sources_.size()) {
            complain("something would be smaller than nothing " + axis);
            continue;
        }
        const Source& source = sources_[conflict];
        complain(std::string(source.reason) + " of " + nameOf(source.one) +
                 (source.two ? " and " + nameOf(source.two) : "") + " cannot be satisfied " + axis);
    }
    for (const int variable : answer.ambiguous) {
        NSView* const view = views_[static_cast<std::size_t>(variable) / 2];
        if (variable > 0 && isShown(view)) // the root stands where it is put
            complain("the " + std::string(variable % 2 == 0 ? "place" : "size") + " of " + nameOf(view) + " is open " +
                     axis);
    }
    return answer.steps;
}

std::size_t layOut(NSView* root, NSSize size) {
    @autoreleasepool {
        std::size_t steps = LayoutBuilder(root, size.width, Axis::horizontal).solve();
        steps +=
            LayoutBuilder(root, size.height, Axis::vertical).solve(); // texts wrap at the widths that they have now
        check(root, root);
        return steps;
    }
}

} // namespace vantry::apple

using namespace vantry;
using namespace vantry::apple;

@implementation NSStackView
@synthesize orientation, alignment, edgeInsets, distribution, spacing, detachesHiddenViews;

+ (instancetype)stackViewWithViews:(NSArray<NSView*>*)views {
    NSStackView* stack = [[self alloc] initWithFrame:NSZeroRect];
    for (NSView* view in views)
        [stack addArrangedSubview:view];
    return stack;
}

// Defaults: documentation of the properties.
- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        self.spacing = 8;
        self.alignment = NSLayoutAttributeCenterY;
        self.distribution = NSStackViewDistributionGravityAreas;
        self.detachesHiddenViews = YES;
        _stackHugging.fill(NSLayoutPriorityDefaultLow);
    }
    return self;
}

ANSWERS(NSArray<NSView*>*, arrangedSubviews, [NSArray arrayWithObjects:_arranged.data() count:_arranged.size()])

- (void)addArrangedSubview:(NSView*)view {
    [self insertArrangedSubview:view atIndex:static_cast<NSInteger>(_arranged.size())];
}

// Also a subview at that place among those that are arranged; a guess.
- (void)insertArrangedSubview:(NSView*)view atIndex:(NSInteger)index {
    if (index < 0 || index > static_cast<NSInteger>(_arranged.size()))
        objc::die("a view behind the end of a stack");
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:view];
    _arranged.insert(_arranged.begin() + index, view);
    std::ranges::sort(_children, {}, [self](NSView* child) { return std::ranges::find(_arranged, child); });
}

- (void)childIsRemoved:(NSView*)child {
    std::erase(_arranged, child);
}

- (void)setHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation {
    _stackHugging[static_cast<std::size_t>(orientation)] = priority;
}

- (void)addRulesTo:(LayoutBuilder&)builder along:(Axis)axis {
    const NSEdgeInsets insets = self.edgeInsets;
    const bool horizontal = axis == Axis::horizontal;
    const double before = horizontal ? insets.left : insets.top;
    const double after = horizontal ? insets.right : insets.bottom;
    std::vector<NSView*> shown = _arranged;
    std::erase_if(shown, [](NSView* view) { return isDetached(view); });
    if (horizontal == (self.orientation == NSUserInterfaceLayoutOrientationHorizontal))
        [self addRulesTo:builder inOrder:shown before:before after:after];
    else
        for (NSView* view : shown)
            [self addRulesTo:builder across:view before:before after:after along:axis];
}

// Beside each other, from edge to edge.
- (void)addRulesTo:(LayoutBuilder&)builder
           inOrder:(const std::vector<NSView*>&)views
            before:(double)before
             after:(double)after {
    using enum LayoutSide;
    using enum LayoutRelation;
    if (self.distribution != NSStackViewDistributionFill && self.distribution != NSStackViewDistributionFillEqually)
        objc::die("a distribution of a stack that nothing uses");
    if (views.empty()) {
        builder.add(self, size, atLeast, nil, {}, before + after, required, "the insets");
        builder.add(self, size, equal, nil, {}, before + after, 1, "an empty stack"); // guess
        return;
    }
    builder.add(views.front(), begin, equal, self, begin, before, required, "the stack's beginning");
    builder.add(views.back(), end, equal, self, end, -after, required, "the stack's end");
    for (std::size_t index = 1; index < views.size(); ++index) {
        builder.add(views[index], begin, equal, views[index - 1], end, self.spacing, required, "the spacing");
        if (self.distribution == NSStackViewDistributionFillEqually)
            builder.add(views[index], size, equal, views[0], size, 0, required, "equal sizes");
    }
}

// Aligned, and no larger than the stack, which hugs them: "NSStackView", setHuggingPriority:forOrientation:.
- (void)addRulesTo:(LayoutBuilder&)builder
            across:(NSView*)view
            before:(double)before
             after:(double)after
             along:(Axis)axis {
    using enum LayoutSide;
    using enum LayoutRelation;
    if (self.alignment == NSLayoutAttributeLeading || self.alignment == NSLayoutAttributeTop) {
        builder.add(view, begin, equal, self, begin, before, required, "the alignment");
    } else {
        builder.add(view, centre, equal, self, centre, (before - after) / 2, required, "the alignment");
        builder.add(view, begin, atLeast, self, begin, before, required, "the stack's edge");
    }
    builder.add(view, end, atMost, self, end, -after, required, "the stack's edge");
    const double hugging = _stackHugging[static_cast<std::size_t>(axis)];
    builder.add(view, end, equal, self, end, -after, std::min(hugging, required - 1), "the stack's hugging");
}

@end

@implementation NSClipView

ANSWERS(NSRect, bounds, NSMakeRect(0, _scrolled, _place.size.width, _place.size.height))

// "Your code should then send reflectScrolledClipView: to the scroll view."
- (void)scrollToPoint:(NSPoint)point {
    _scrolled = point.y;
    _isReflected = NO;
}

@end

@implementation NSScrollView
@synthesize documentView = _documentView, contentView, borderType;
@synthesize hasVerticalScroller, hasHorizontalScroller, autohidesScrollers, drawsBackground;

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        NSClipView* clip = [[NSClipView alloc] initWithFrame:NSZeroRect];
        clip->_isReflected = YES;
        clip.translatesAutoresizingMaskIntoConstraints = NO;
        self.contentView = clip;
        [self addSubview:clip];
    }
    return self;
}

- (void)setDocumentView:(NSView*)view {
    _documentView = view;
    [self.contentView addSubview:view];
}

- (void)reflectScrolledClipView:(NSClipView*)clip {
    clip->_isReflected = YES;
}

// guess: scrollers lie over the contents, as on a system with a trackpad
- (void)addRulesTo:(LayoutBuilder&)builder along:(Axis)axis {
    for (const LayoutSide side : {LayoutSide::begin, LayoutSide::size})
        builder.add(self.contentView, side, LayoutRelation::equal, self, side, 0, required, "the scroll view");
}

@end
