#pragma once

#include "app/Look.h"

#include <AppKit/AppKit.h>

namespace vantry {

inline constexpr CGFloat cleanupSymbolSize = 16; ///< point size of the symbols

} // namespace vantry

/// A rounded box with a thin border. Its colours follow the appearance.
@interface OmbrelCardView : NSView

@property(nonatomic, strong) NSColor* fillColor;
@property(nonatomic, strong) NSColor* edgeColor; ///< nil for none
@property(nonatomic) CGFloat cornerRadius;       ///< 0 for a capsule

/// The card behind rows and figures.
+ (instancetype)card;

@end
