#include "shell/appkit/CleanupRowView.h"

#include "shell/appkit/CleanupLook.h"

#include <utility>

@implementation OmbrelCleanupRowView {
    vantry::SharedRowActions _actions;
}

- (instancetype)initWithActions:(vantry::SharedRowActions)actions {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _actions = std::move(actions);
        self.translatesAutoresizingMaskIntoConstraints = NO;
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityGroupRole;
        // Low priority: the row is as low as its texts allow.
        NSLayoutConstraint* height = [self.heightAnchor constraintEqualToConstant:vantry::cleanupMinimumRow];
        height.priority = NSLayoutPriorityDefaultLow;
        [NSLayoutConstraint activateConstraints:@[
            height, [self.heightAnchor constraintGreaterThanOrEqualToConstant:vantry::cleanupMinimumRow]
        ]];
    }
    return self;
}

- (vantry::SharedRowActions)actions {
    return _actions;
}

@end
