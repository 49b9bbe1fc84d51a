#include "shell/appkit/Stacks.h"

#include "shell/appkit/AppKitConversions.h"

namespace vantry {

namespace {

void setLook(NSTextField* label, const Font& font, SystemColor color) {
    label.translatesAutoresizingMaskIntoConstraints = NO;
    label.font = nsFont(font);
    label.textColor = nsColor(color);
    [label setContentHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationVertical];
}

void makeFullWidth(NSStackView* stack, NSView* view) {
    [view.widthAnchor constraintEqualToAnchor:stack.widthAnchor
                                     constant:-(stack.edgeInsets.left + stack.edgeInsets.right)]
        .active = YES;
}

NSStackView* makeStack(NSUserInterfaceLayoutOrientation orientation, NSLayoutAttribute alignment, CGFloat spacing) {
    NSStackView* stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.translatesAutoresizingMaskIntoConstraints = NO;
    stack.orientation = orientation;
    stack.alignment = alignment;
    stack.distribution = NSStackViewDistributionFill;
    stack.spacing = spacing;
    [stack setHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationVertical];
    return stack;
}

} // namespace

NSTextField* makeTextLabel(const Font& font, SystemColor color) {
    NSTextField* label = [NSTextField labelWithString:@""];
    setLook(label, font, color);
    label.lineBreakMode = NSLineBreakByTruncatingTail;
    label.allowsExpansionToolTips = YES; // with the whole text of a label that cuts it off
    setHorizontalResistance(label, NSLayoutPriorityDefaultLow);
    return label;
}

NSTextField* makeWrappingLabel(const Font& font, SystemColor color, NSInteger lines) {
    NSTextField* label = [NSTextField wrappingLabelWithString:@""];
    setLook(label, font, color);
    label.selectable = NO;
    label.maximumNumberOfLines = lines;
    label.cell.truncatesLastVisibleLine = YES;
    setHorizontalHugging(label, NSLayoutPriorityDefaultLow);
    setHorizontalResistance(label, NSLayoutPriorityDefaultLow);
    return label;
}

NSStackView* verticalStack(CGFloat spacing, NSArray<NSView*>* views) {
    NSStackView* stack = makeStack(NSUserInterfaceLayoutOrientationVertical, NSLayoutAttributeLeading, spacing);
    for (NSView* view in views)
        addFullWidth(stack, view);
    return stack;
}

NSStackView* horizontalStack(CGFloat spacing, NSArray<NSView*>* views) {
    NSStackView* stack = makeStack(NSUserInterfaceLayoutOrientationHorizontal, NSLayoutAttributeCenterY, spacing);
    [stack setHuggingPriority:NSLayoutPriorityDefaultLow forOrientation:NSLayoutConstraintOrientationHorizontal];
    for (NSView* view in views)
        [stack addArrangedSubview:view];
    return stack;
}

void addFullWidth(NSStackView* stack, NSView* view) {
    [stack addArrangedSubview:view];
    makeFullWidth(stack, view);
}

void setFullWidth(NSStackView* stack, NSView* view, NSView* above, bool isShown) {
    if (isShown == (view.superview != nil))
        return;
    if (!isShown) {
        [view removeFromSuperview];
        return;
    }
    [stack insertArrangedSubview:view atIndex:static_cast<NSInteger>([stack.arrangedSubviews indexOfObject:above]) + 1];
    makeFullWidth(stack, view);
}

void pinEdges(NSView* view, NSView* holder, CGFloat horizontalPadding, CGFloat verticalPadding) {
    [NSLayoutConstraint activateConstraints:@[
        [view.leadingAnchor constraintEqualToAnchor:holder.leadingAnchor constant:horizontalPadding],
        [view.trailingAnchor constraintEqualToAnchor:holder.trailingAnchor constant:-horizontalPadding],
        [view.topAnchor constraintEqualToAnchor:holder.topAnchor constant:verticalPadding],
        [view.bottomAnchor constraintEqualToAnchor:holder.bottomAnchor constant:-verticalPadding],
    ]];
}

NSView* makeFlexibleSpace() {
    NSView* space = [[NSView alloc] initWithFrame:NSZeroRect];
    space.translatesAutoresizingMaskIntoConstraints = NO;
    setHorizontalHugging(space, NSLayoutPriorityDefaultLow);
    return space;
}

void setHorizontalHugging(NSView* view, NSLayoutPriority priority) {
    [view setContentHuggingPriority:priority forOrientation:NSLayoutConstraintOrientationHorizontal];
}

void setHorizontalResistance(NSView* view, NSLayoutPriority priority) {
    [view setContentCompressionResistancePriority:priority forOrientation:NSLayoutConstraintOrientationHorizontal];
}

void activateApplication() { [[NSApplication sharedApplication] activateIgnoringOtherApps:YES]; }

} // namespace vantry
