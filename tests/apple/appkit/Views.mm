// Responders, views, and the constraints between them.

#include "tests/apple/appkit/Doubles.h"
#include "tests/apple/runtime/Runtime.h"

#include <algorithm>

using namespace vantry;
using namespace vantry::apple;

namespace {

constexpr NSLayoutPriority defaultHugging = 250; // "Content hugging and compression resistance", NSLayoutConstraint
constexpr NSLayoutPriority defaultResistance = 750;

/// How far what is in a view was scrolled up.
CGFloat scrolledIn(NSView* view) {
    return [view isKindOfClass:[NSClipView class]] ? static_cast<NSClipView*>(view)->_scrolled : 0;
}

/// From the superview's coordinates to those of the view.
NSPoint pointIn(NSView* view, NSPoint point) {
    NSView* const parent = view->_parent;
    const bool parentIsFlipped = !parent || parent.flipped; // a root is asked from the top left
    const CGFloat fromTop =
        (parentIsFlipped ? point.y : parent->_place.size.height - point.y) + scrolledIn(parent) - view->_place.origin.y;
    return NSMakePoint(point.x - view->_place.origin.x, view.flipped ? fromTop : view->_place.size.height - fromTop);
}

} // namespace

@implementation NSResponder

- (void)keyDown:(NSEvent*)event { // the system beeps
}

@end

@interface NSLayoutAnchor () {
@public
    __unsafe_unretained NSView* _view;
    LayoutSide _side;
    Axis _axis;
}
@end

namespace {

NSLayoutConstraint* makeConstraint(NSLayoutAnchor* one, int relation, NSLayoutAnchor* two, CGFloat constant) {
    NSLayoutConstraint* constraint = [[NSLayoutConstraint alloc] init];
    constraint->_one = one->_view;
    constraint->_sideOne = one->_side;
    constraint->_axis = one->_axis;
    constraint->_relation = relation;
    constraint.constant = constant;
    constraint.priority = NSLayoutPriorityRequired;
    if (two) {
        constraint->_two = two->_view;
        constraint->_sideTwo = two->_side;
        constraint->_hasTwo = YES;
    }
    return constraint;
}

template <class Anchor>
Anchor* anchorOf(NSView* view, LayoutSide side, Axis axis) {
    Anchor* anchor = [[Anchor alloc] init];
    anchor->_view = view;
    anchor->_side = side;
    anchor->_axis = axis;
    return anchor;
}

} // namespace

// detachesHiddenViews: "removes hidden views from its view hierarchy"; guess: at once
bool vantry::apple::isDetached(NSView* view) {
    return view.hidden && [view->_parent isKindOfClass:[NSStackView class]] &&
           static_cast<NSStackView*>(view->_parent).detachesHiddenViews;
}

NSView* vantry::apple::commonHolder(NSView* one, NSView* two) {
    const auto holderOf = [](NSView* view) { return isDetached(view) ? nil : view->_parent; };
    for (NSView* each = one; each; each = holderOf(each))
        for (NSView* other = two; other; other = holderOf(other))
            if (other == each)
                return each;
    return nil;
}

@implementation NSLayoutConstraint
@synthesize constant, priority;

// "Activating a constraint adds it to the closest common ancestor of its items"; without one, an exception.
- (void)setActive:(BOOL)active {
    NSView* holder = _hasTwo ? commonHolder(_one, _two) : _one;
    if (!holder && !active)
        return; // it went with a view that was removed
    if (!holder)
        objc::die("a constraint between views without a common ancestor: " + nameOf(_one) + " and " + nameOf(_two));
    std::erase(holder->_installed, self);
    if (active)
        holder->_installed.push_back(self);
}

+ (void)activateConstraints:(NSArray<NSLayoutConstraint*>*)constraints {
    for (NSLayoutConstraint* constraint in constraints)
        constraint.active = YES;
}

@end

#define TO_ANCHOR(name, relation)                                                                                      \
    -(NSLayoutConstraint*)name : (NSLayoutAnchor*)anchor {                                                             \
        return makeConstraint(self, relation, anchor, 0);                                                              \
    }                                                                                                                  \
    -(NSLayoutConstraint*)name : (NSLayoutAnchor*)anchor constant : (CGFloat)constant {                                \
        return makeConstraint(self, relation, anchor, constant);                                                       \
    }
#define TO_CONSTANT(name, relation)                                                                                    \
    -(NSLayoutConstraint*)name : (CGFloat)constant {                                                                   \
        return makeConstraint(self, relation, nil, constant);                                                          \
    }

@implementation NSLayoutAnchor
TO_ANCHOR(constraintEqualToAnchor, 0)
TO_ANCHOR(constraintGreaterThanOrEqualToAnchor, 1)
TO_ANCHOR(constraintLessThanOrEqualToAnchor, -1)
@end

@implementation NSLayoutXAxisAnchor
@end

@implementation NSLayoutYAxisAnchor
@end

@implementation NSLayoutDimension
TO_CONSTANT(constraintEqualToConstant, 0)
TO_CONSTANT(constraintGreaterThanOrEqualToConstant, 1)
TO_CONSTANT(constraintLessThanOrEqualToConstant, -1)
@end

#define ANCHOR(type, name, side, axis)                                                                                 \
    -(type*)name {                                                                                                     \
        return anchorOf<type>(self, LayoutSide::side, Axis::axis);                                                     \
    }

@implementation NSView {
    NSAppearance* _appearance;
}
@synthesize identifier, toolTip, hidden = _hidden, needsDisplay, translatesAutoresizingMaskIntoConstraints;
@synthesize accessibilityElement, accessibilityHelp, accessibilityLabel, accessibilityRole, accessibilityValue;
@synthesize accessibilityTitleUIElement;

ANCHOR(NSLayoutXAxisAnchor, leadingAnchor, begin, horizontal) // guess: the language runs from left to right
ANCHOR(NSLayoutXAxisAnchor, trailingAnchor, end, horizontal)
ANCHOR(NSLayoutXAxisAnchor, centerXAnchor, centre, horizontal)
ANCHOR(NSLayoutYAxisAnchor, topAnchor, begin, vertical)
ANCHOR(NSLayoutYAxisAnchor, bottomAnchor, end, vertical)
ANCHOR(NSLayoutYAxisAnchor, centerYAnchor, centre, vertical)
ANCHOR(NSLayoutDimension, widthAnchor, size, horizontal)
ANCHOR(NSLayoutDimension, heightAnchor, size, vertical)

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super init])) {
        _place = frame;
        _hugging.fill(defaultHugging);
        _resistance.fill(defaultResistance);
        self.translatesAutoresizingMaskIntoConstraints = YES;
        self.needsDisplay = YES;
    }
    return self;
}

ANSWERS(instancetype, init, [self initWithFrame:NSZeroRect])

- (void)dealloc {
    for (NSView* child : _children)
        child->_parent = nil;
}

ANSWERS(NSView*, superview, _parent)

- (NSWindow*)window {
    for (NSView* view = self; view; view = view->_parent)
        if (view->_holder)
            return view->_holder;
    return nil;
}

ANSWERS(NSArray<NSView*>*, subviews, [NSArray arrayWithObjects:_children.data() count:_children.size()])

- (void)addSubview:(NSView*)view {
    if (!view)
        objc::die("nil as a subview");
    [view removeFromSuperview];
    _children.push_back(view);
    view->_parent = self;
}

- (void)setHidden:(BOOL)hidden {
    _hidden = hidden;
    if (isDetached(self))
        [self dropConstraints];
}

- (void)dropConstraints {
    for (NSView* holder = _parent; holder; holder = holder->_parent)
        std::erase_if(holder->_installed, [self](NSLayoutConstraint* constraint) {
            return [constraint->_one isDescendantOf:self] || [constraint->_two isDescendantOf:self];
        });
}

// "Also removes any constraints that refer to the view or to any view in its subtree", those inside it excepted. guess:
// a view that leaves its window loses the keyboard to it.
- (void)removeFromSuperview {
    NSView* const removed = self; // the superview may have held the last reference
    NSResponder* const focused = removed.window.firstResponder;
    if ([focused isKindOfClass:[NSView class]] && [static_cast<NSView*>(focused) isDescendantOf:removed])
        [removed.window makeFirstResponder:removed.window];
    [self dropConstraints];
    if (!_parent)
        return;
    [_parent childIsRemoved:removed];
    std::erase(_parent->_children, removed);
    removed->_parent = nil;
}

- (void)childIsRemoved:(NSView*)child {
}

- (BOOL)isDescendantOf:(NSView*)view {
    for (NSView* each = self; each; each = each->_parent)
        if (each == view)
            return YES;
    return NO;
}

ANSWERS(BOOL, isFlipped, NO)
ANSWERS(NSRect, bounds, NSMakeRect(0, 0, _place.size.width, _place.size.height))

- (NSRect)frame {
    NSRect frame = _place;
    if (_parent && !_parent.flipped)
        frame.origin.y = _parent->_place.size.height - NSMaxY(_place);
    return frame;
}

// "Nil is the window": its y grows upwards.
- (NSRect)convertRect:(NSRect)rect toView:(NSView*)view {
    if (view || !NSEqualRects(rect, self.bounds))
        objc::die("a rectangle that is converted to another view");
    const NSRect place = placeInRoot(self);
    return NSMakeRect(place.origin.x, NSHeight(self.window.frame) - NSMaxY(place), place.size.width, place.size.height);
}

- (void)setContentHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation {
    _hugging[static_cast<std::size_t>(orientation)] = priority;
}

- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation {
    _resistance[static_cast<std::size_t>(orientation)] = priority;
}

- (NSSize)contentSizeAtWidth:(CGFloat)width {
    return NSMakeSize(-1, -1);
}

- (void)addRulesTo:(LayoutBuilder&)builder along:(Axis)axis {
}

// "The farthest descendant that contains the point, which is in the coordinates of the superview"; hidden views are
// left out.
- (NSView*)hitTest:(NSPoint)point {
    const NSPoint inside = pointIn(self, point);
    const NSSize size = _place.size;
    if (self.hidden || inside.x < 0 || inside.y < 0 || inside.x >= size.width || inside.y >= size.height)
        return nil;
    for (auto child = _children.rbegin(); child != _children.rend(); ++child)
        if (NSView* hit = [*child hitTest:inside])
            return hit;
    return self;
}

- (BOOL)performKeyEquivalent:(NSEvent*)event {
    return std::ranges::any_of(_children, [event](NSView* child) { return [child performKeyEquivalent:event]; });
}

ANSWERS(NSAppearance*, appearance, _appearance)

- (void)setAppearance:(NSAppearance*)appearance {
    _appearance = appearance;
    [self appearanceHasChanged];
}

- (NSAppearance*)effectiveAppearance {
    for (NSView* view = self; view; view = view->_parent)
        if (view->_appearance)
            return view->_appearance;
    return [NSAppearance appearanceNamed:NSAppearanceNameAqua];
}

- (void)appearanceHasChanged {
    [self viewDidChangeEffectiveAppearance];
    for (NSView* child : _children)
        [child appearanceHasChanged];
}

- (void)viewDidChangeEffectiveAppearance {
}

- (void)drawRect:(NSRect)dirtyRect {
}

- (void)paintOn:(CGContextRef)context size:(vantry::Size)size {
}

@end

@implementation NSViewController {
    NSView* _view;
}

// "Loaded the first time it is asked for."
- (NSView*)view {
    if (!_view)
        [self loadView];
    return _view;
}

- (void)setView:(NSView*)view {
    _view = view;
}

@end
