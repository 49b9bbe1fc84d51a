#include "shell/appkit/CleanupLook.h"

#include <algorithm>

@implementation OmbrelCardView

+ (instancetype)card {
    OmbrelCardView* card = [[self alloc] initWithFrame:NSZeroRect];
    card.fillColor = [NSColor controlBackgroundColor];
    card.edgeColor = [NSColor separatorColor];
    card.cornerRadius = vantry::cleanupCardRadius;
    return card;
}

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame]))
        self.translatesAutoresizingMaskIntoConstraints = NO;
    return self;
}

- (void)setFillColor:(NSColor*)fillColor {
    _fillColor = fillColor;
    self.needsDisplay = YES;
}

- (void)setEdgeColor:(NSColor*)edgeColor {
    _edgeColor = edgeColor;
    self.needsDisplay = YES;
}

- (void)viewDidChangeEffectiveAppearance {
    [super viewDidChangeEffectiveAppearance];
    self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    [super drawRect:dirtyRect];
    const NSRect rect = NSInsetRect(self.bounds, 0.5, 0.5); // the middle of the border
    const CGFloat radius = _cornerRadius > 0 ? _cornerRadius : std::min(NSWidth(rect), NSHeight(rect)) / 2;
    NSBezierPath* path = [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
    [_fillColor setFill];
    [path fill];
    if (!_edgeColor)
        return;
    [_edgeColor setStroke];
    path.lineWidth = 1;
    [path stroke];
}

@end
