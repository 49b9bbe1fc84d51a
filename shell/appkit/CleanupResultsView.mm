#include "shell/appkit/CleanupResultsView.h"

#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

#include <algorithm>
#include <dispatch/dispatch.h>
#include <utility>

using namespace vantry;

namespace {

constexpr CGFloat topMargin = 6;
constexpr int rowsAtOnce = 24; // more than a window shows
constexpr int rowsInASlice = 16;

constexpr CGFloat emptySymbolSide = 36;

} // namespace

/// Flipped, so that the scroll view starts at its top.
@interface OmbrelResultsStackView : NSStackView
@end

@implementation OmbrelResultsStackView

- (BOOL)isFlipped {
    return YES;
}

@end

@interface OmbrelEmptyStateView : NSView
- (void)setContent:(const EmptyStateContent&)content;
@end

@implementation OmbrelEmptyStateView {
    NSImageView* _symbol;
    NSTextField* _titleLabel;
    NSTextField* _detailLabel;
}

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        self.translatesAutoresizingMaskIntoConstraints = NO;
        _symbol = makeSymbolView(emptySymbolSide);
        _titleLabel = makeWrappingLabel(cleanupHeadingFont);
        _titleLabel.alignment = NSTextAlignmentCenter;
        _detailLabel = makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _detailLabel.alignment = NSTextAlignmentCenter;
        NSStackView* stack = [NSStackView stackViewWithViews:@[ _symbol, _titleLabel, _detailLabel ]];
        stack.translatesAutoresizingMaskIntoConstraints = NO;
        stack.orientation = NSUserInterfaceLayoutOrientationVertical;
        stack.alignment = NSLayoutAttributeCenterX;
        stack.distribution = NSStackViewDistributionFill;
        stack.spacing = emptyStateSpacing;
        [self addSubview:stack];
        pinEdges(stack, self, 0, 0);
        [NSLayoutConstraint activateConstraints:@[
            [_titleLabel.widthAnchor constraintLessThanOrEqualToConstant:emptyStateWidth],
            [_detailLabel.widthAnchor constraintLessThanOrEqualToConstant:emptyStateWidth],
            [self.widthAnchor constraintEqualToConstant:emptyStateWidth],
        ]];
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityGroupRole;
    }
    return self;
}

- (void)setContent:(const EmptyStateContent&)content {
    showSymbol(_symbol, content.symbolName, emptyStateSymbolSize, SystemColor::secondaryLabel);
    _titleLabel.stringValue = nsString(content.title);
    _detailLabel.stringValue = nsString(content.detail);
    self.accessibilityLabel = nsString(content.title);
}

@end

@implementation OmbrelCleanupResultsView {
    SharedRowActions _actions;
    OmbrelResultsStackView* _resultsStack;
    OmbrelEmptyStateView* _emptyState;
    std::vector<OmbrelCleanupSectionView*> _sections;
    BOOL _sliceIsPosted;
    BOOL _selectionEnabled;
}

- (instancetype)initWithActions:(SharedRowActions)actions {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _actions = std::move(actions);
        _selectionEnabled = YES;
        self.translatesAutoresizingMaskIntoConstraints = NO;
        self.hasVerticalScroller = YES;
        self.hasHorizontalScroller = NO;
        self.autohidesScrollers = YES;
        self.borderType = NSNoBorder;
        self.drawsBackground = NO;
        _resultsStack = [[OmbrelResultsStackView alloc] initWithFrame:NSZeroRect];
        _resultsStack.translatesAutoresizingMaskIntoConstraints = NO;
        _resultsStack.orientation = NSUserInterfaceLayoutOrientationVertical;
        _resultsStack.alignment = NSLayoutAttributeLeading;
        _resultsStack.distribution = NSStackViewDistributionFill;
        _resultsStack.spacing = cleanupSectionGap;
        _resultsStack.edgeInsets =
            NSEdgeInsetsMake(topMargin, cleanupMargin, cleanupResultsBottomMargin, cleanupMargin);
        self.documentView = _resultsStack;
        _emptyState = [[OmbrelEmptyStateView alloc] initWithFrame:NSZeroRect];
        _emptyState.hidden = YES;
        [self addSubview:_emptyState];
        NSClipView* clip = self.contentView;
        [NSLayoutConstraint activateConstraints:@[
            [_resultsStack.leadingAnchor constraintEqualToAnchor:clip.leadingAnchor],
            [_resultsStack.trailingAnchor constraintEqualToAnchor:clip.trailingAnchor],
            [_resultsStack.topAnchor constraintEqualToAnchor:clip.topAnchor],
            [_emptyState.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
            [_emptyState.centerYAnchor constraintEqualToAnchor:self.centerYAnchor constant:-emptyStateRaise],
        ]];
    }
    return self;
}

- (void)setEmptyState:(const std::optional<EmptyStateContent>&)emptyState
             sections:(const std::vector<CleanupSectionContent>&)sections {
    NSView* focused = [self focusedControl];
    const NSUInteger focusedRow = focused ? [[self rows] indexOfObject:focused.superview] : NSNotFound;
    _emptyState.hidden = !emptyState;
    if (emptyState)
        [_emptyState setContent:*emptyState];

    std::vector<OmbrelCleanupSectionView*> before = std::exchange(_sections, {});
    for (const CleanupSectionContent& section : sections) {
        const auto same = std::ranges::find_if(
            before, [&](OmbrelCleanupSectionView* view) { return view && view.area == section.area; });
        OmbrelCleanupSectionView* view = same == before.end()
                                             ? [[OmbrelCleanupSectionView alloc] initWithActions:_actions]
                                             : std::exchange(*same, nil);
        view.selectionEnabled = _selectionEnabled;
        [view setContent:section];
        _sections.push_back(view);
    }
    [self keepSectionsInPlace];
    [self buildRows:rowsAtOnce];
    NSArray<NSView*>* rows = [self rows];
    if (focused.window)
        [self.window makeFirstResponder:focused];
    else if (focusedRow != NSNotFound && rows.count > 0)
        [self focusRow:rows[std::min(focusedRow, rows.count - 1)] like:focused];
}

/// The placed rows of all sections.
- (NSArray<NSView*>*)rows {
    NSMutableArray<NSView*>* rows = [NSMutableArray array];
    for (OmbrelCleanupSectionView* section : _sections)
        for (NSView* row in section.rows)
            [rows addObject:row];
    return rows;
}

/// Focuses the control in the same place of its row as `gone`, or else the row's other control.
- (void)focusRow:(NSView*)row like:(NSView*)gone {
    const NSUInteger place = [gone.superview.subviews indexOfObject:gone];
    NSView* found = nil;
    for (NSView* view in row.subviews)
        if ([view isKindOfClass:[NSButton class]] && !view.hidden &&
            (!found || [row.subviews indexOfObject:view] == place))
            found = view;
    if (found)
        [self.window makeFirstResponder:found];
}

- (void)setSelectionEnabled:(BOOL)enabled {
    _selectionEnabled = enabled;
    for (OmbrelCleanupSectionView* section : _sections)
        section.selectionEnabled = enabled;
}

/// The focused control, if it belongs to a row.
- (NSView*)focusedControl {
    NSResponder* responder = self.window.firstResponder;
    if (![responder isKindOfClass:[NSView class]])
        return nil;
    NSView* view = static_cast<NSView*>(responder);
    return [view isDescendantOf:_resultsStack] ? view : nil;
}

/// Removes the shown sections, starting at the first that differs from `_sections`.
- (void)keepSectionsInPlace {
    NSArray<NSView*>* shown = _resultsStack.arrangedSubviews;
    std::size_t kept = 0;
    while (kept < shown.count && kept < _sections.size() && shown[kept] == _sections[kept])
        ++kept;
    for (std::size_t index = kept; index < shown.count; ++index)
        [shown[index] removeFromSuperview];
}

/// Places rows from the top and creates at most `newRows`. A section is shown only when those above it are complete, so
/// that nothing visible moves.
- (void)buildRows:(int)newRows {
    bool reached = true;
    for (OmbrelCleanupSectionView* section : _sections) {
        if (reached && !section.superview)
            addFullWidth(_resultsStack, section);
        else if (!reached)
            [section removeFromSuperview];
        while (reached && !section.isComplete) {
            if (!section.nextRowIsKept && newRows-- <= 0)
                reached = false;
            else
                [section placeNextRow];
        }
    }
    if (!reached)
        [self postSlice];
}

- (void)postSlice {
    if (_sliceIsPosted)
        return;
    _sliceIsPosted = YES;
    __weak OmbrelCleanupResultsView* weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
        [weakSelf buildSlice];
    });
}

- (void)buildSlice {
    _sliceIsPosted = NO;
    [self buildRows:rowsInASlice];
}

- (void)scrollToTop {
    [self scrollTo:0];
}

- (void)scrollByPages:(CGFloat)pages {
    const NSRect seen = self.contentView.bounds;
    const CGFloat furthest = NSHeight(self.documentView.frame) - NSHeight(seen);
    [self scrollTo:std::max(0.0, std::min(NSMinY(seen) + pages * NSHeight(seen), furthest))];
}

- (void)scrollTo:(CGFloat)top {
    [self.contentView scrollToPoint:NSMakePoint(0, top)];
    [self reflectScrolledClipView:self.contentView];
}

@end
