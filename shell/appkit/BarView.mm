#include "shell/appkit/BarView.h"

#include "shell/appkit/AppKitConversions.h"

using namespace vantry;

namespace {

NSAccessibilityRole nsRole(AccessibilityRole role) {
    switch (role) {
    case AccessibilityRole::progressIndicator: return NSAccessibilityProgressIndicatorRole;
    }
    return NSAccessibilityUnknownRole;
}

} // namespace

@implementation OmbrelBarView {
    VantryView _view;
}

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [self updateAccessibility];
    }
    return self;
}

- (void)setView:(const VantryView&)view {
    if (_view == view)
        return;
    const bool told = _view.accessibility() == view.accessibility();
    _view = view;
    self.needsDisplay = YES;
    if (!told) {
        [self updateAccessibility];
        NSAccessibilityPostNotification(self, NSAccessibilityValueChangedNotification);
    }
}

- (void)updateAccessibility {
    const AccessibilityContent content = _view.accessibility();
    self.accessibilityElement = content.isElement;
    self.accessibilityRole = content.isElement ? nsRole(content.role) : nil;
    self.accessibilityLabel = content.isElement ? nsString(content.label) : nil;
    self.accessibilityValue = content.isElement ? nsString(content.value) : nil;
}

- (void)drawOnCanvas:(Canvas&)canvas size:(vantry::Size)size appearance:(Appearance)appearance {
    _view.draw(canvas, size, appearance);
}

@end
