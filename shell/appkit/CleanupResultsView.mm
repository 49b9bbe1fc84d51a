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
constexpr CGFloat sectionGap = 26;
constexpr CGFloat bottomMargin = 24;
constexpr int rowsAtOnce = 24; // more than a window shows
constexpr int rowsInASlice = 16;

constexpr CGFloat emptySymbolSize = 28;
constexpr CGFloat emptySymbolSide = 36;
constexpr CGFloat emptySpacing = 7;
constexpr CGFloat emptyWidth = 250;
constexpr CGFloat emptyRaise = 80;

} // namespace

/// A stack that begins at the top of what scrolls it.
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
        _titleLabel = makeCleanupWrappingLabel(cleanupHeadingFont, SystemColor::label);
        _titleLabel.alignment = NSTextAlignmentCenter;
        _detailLabel = makeCleanupWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _detailLabel.alignment = NSTextAlignmentCenter;
        NSStackView* stack = [NSStackView stackViewWithViews:@[ _symbol, _titleLabel, _detailLabel ]];
        stack.translatesAutoresizingMaskIntoConstraints = NO;
        stack.orientation = NSUserInterfaceLayoutOrientationVertical;
        stack.alignment = NSLayoutAttributeCenterX;
        stack.distribution = NSStackViewDistributionFill;
        stack.spacing = emptySpacing;
        [self addSubview:stack];
        pinEdges(stack, self, 0, 0);
        [NSLayoutConstraint activateConstraints:@[
            [_titleLabel.widthAnchor constraintLessThanOrEqualToConstant:emptyWidth],
            [_detailLabel.widthAnchor constraintLessThanOrEqualToConstant:emptyWidth],
            [self.widthAnchor constraintEqualToConstant:emptyWidth],
        ]];
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityGroupRole;
    }
    return self;
}

- (void)setContent:(const EmptyStateContent&)content {
    showSymbol(_symbol, content.symbolName, emptySymbolSize, SystemColor::secondaryLabel);
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
        _resultsStack.spacing = sectionGap;
        _resultsStack.edgeInsets = NSEdgeInsetsMake(topMargin, cleanupMargin, bottomMargin, cleanupMargin);
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
            [_emptyState.centerYAnchor constraintEqualToAnchor:self.centerYAnchor constant:-emptyRaise],
        ]];
    }
    return self;
}

- (void)setEmptyState:(const std::optional<EmptyStateContent>&)emptyState
             sections:(const std::vector<CleanupSectionContent>&)sections {
    NSView* focused = [self focusedControl];
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
    if (![self sectionsAreShown])
        [self showSections];
    [self buildRows:rowsAtOnce];
    if (focused.window)
        [self.window makeFirstResponder:focused];
}

- (void)setSelectionEnabled:(BOOL)enabled {
    _selectionEnabled = enabled;
    for (OmbrelCleanupSectionView* section : _sections)
        section.selectionEnabled = enabled;
}

/// The control that has the keyboard, if it is one of a row.
- (NSView*)focusedControl {
    NSResponder* responder = self.window.firstResponder;
    if (![responder isKindOfClass:[NSView class]])
        return nil;
    NSView* view = static_cast<NSView*>(responder);
    return [view isDescendantOf:_resultsStack] ? view : nil;
}

- (BOOL)sectionsAreShown {
    NSArray<NSView*>* shown = _resultsStack.arrangedSubviews;
    if (shown.count != _sections.size())
        return NO;
    for (std::size_t index = 0; index < _sections.size(); ++index)
        if (shown[index] != _sections[index])
            return NO;
    return YES;
}

- (void)showSections {
    for (NSView* view in _resultsStack.arrangedSubviews)
        [view removeFromSuperview];
    for (OmbrelCleanupSectionView* section : _sections) {
        section.hidden = NO; // a stack takes a hidden view out of itself, where no constraint can reach it
        addFullWidth(_resultsStack, section);
    }
}

/// Places rows from the top until `newRows` had to be made. A section is shown once those above it are complete, so
/// that nothing in sight moves.
- (void)buildRows:(int)newRows {
    bool reached = true;
    for (OmbrelCleanupSectionView* section : _sections) {
        section.hidden = !reached;
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
    [self.contentView scrollToPoint:NSZeroPoint];
    [self reflectScrolledClipView:self.contentView];
}

@end
