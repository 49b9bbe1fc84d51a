#include "shell/appkit/BarView.h"

#include "shell/appkit/AppKitCanvas.h"
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

@implementation OmbrelDrawnView

- (BOOL)isFlipped {
    return YES;
}

- (NSView*)hitTest:(NSPoint)point {
    return nil;
}

- (void)viewDidChangeEffectiveAppearance {
    [super viewDidChangeEffectiveAppearance];
    self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    [super drawRect:dirtyRect];
    CGContextRef context = [NSGraphicsContext currentContext].CGContext;
    if (!context)
        return;
    AppKitCanvas canvas(context);
    const NSSize size = self.bounds.size;
    [self drawOnCanvas:canvas size:{size.width, size.height} appearance:appearanceOf(self)];
}

- (void)drawOnCanvas:(Canvas&)canvas size:(vantry::Size)size appearance:(Appearance)appearance {
}

@end

@implementation OmbrelSwatchView {
    std::optional<SolidSwatchView> _view;
}

- (instancetype)initWithKind:(SolidSwatchView::Kind)kind {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _view = SolidSwatchView(kind);
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [NSLayoutConstraint activateConstraints:@[
            [self.widthAnchor constraintEqualToConstant:SolidSwatchView::fixedSize.width],
            [self.heightAnchor constraintEqualToConstant:SolidSwatchView::fixedSize.height],
        ]];
    }
    return self;
}

- (void)setView:(const SolidSwatchView&)view {
    if (_view == view)
        return;
    _view = view;
    self.needsDisplay = YES;
}

- (void)drawOnCanvas:(Canvas&)canvas size:(vantry::Size)size appearance:(Appearance)appearance {
    if (_view)
        _view->draw(canvas, size, appearance);
}

@end

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
