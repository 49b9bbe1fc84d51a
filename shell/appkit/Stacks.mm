#include "shell/appkit/Stacks.h"

#include "shell/appkit/AppKitConversions.h"

namespace vantry {

namespace {

void setVerticalHugging(NSView* view) {
    [view setContentHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationVertical];
}

} // namespace

NSTextField* makeTextLabel(const Font& font) {
    NSTextField* label = [NSTextField labelWithString:@""];
    label.font = nsFont(font);
    label.lineBreakMode = NSLineBreakByTruncatingTail;
    setVerticalHugging(label);
    setHorizontalResistance(label, NSLayoutPriorityDefaultLow);
    return label;
}

NSTextField* makeWrappingLabel(const Font& font, NSInteger lines) {
    NSTextField* label = [NSTextField wrappingLabelWithString:@""];
    label.font = nsFont(font);
    label.selectable = NO;
    label.maximumNumberOfLines = lines;
    label.cell.truncatesLastVisibleLine = YES;
    setVerticalHugging(label);
    setHorizontalHugging(label, NSLayoutPriorityDefaultLow);
    setHorizontalResistance(label, NSLayoutPriorityDefaultLow);
    return label;
}

NSStackView* verticalStack(CGFloat spacing, NSArray<NSView*>* views) {
    NSStackView* stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.translatesAutoresizingMaskIntoConstraints = NO;
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeLeading;
    stack.distribution = NSStackViewDistributionFill;
    stack.spacing = spacing;
    [stack setHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationVertical];
    for (NSView* view in views)
        addFullWidth(stack, view);
    return stack;
}

NSStackView* horizontalStack(CGFloat spacing, NSArray<NSView*>* views) {
    NSStackView* stack = [NSStackView stackViewWithViews:views];
    stack.translatesAutoresizingMaskIntoConstraints = NO;
    stack.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    stack.alignment = NSLayoutAttributeCenterY;
    stack.distribution = NSStackViewDistributionFill;
    stack.spacing = spacing;
    [stack setHuggingPriority:NSLayoutPriorityDefaultLow forOrientation:NSLayoutConstraintOrientationHorizontal];
    [stack setHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationVertical];
    return stack;
}

void addFullWidth(NSStackView* stack, NSView* view) {
    [stack addArrangedSubview:view];
    [view.widthAnchor constraintEqualToAnchor:stack.widthAnchor
                                     constant:-(stack.edgeInsets.left + stack.edgeInsets.right)]
        .active = YES;
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
