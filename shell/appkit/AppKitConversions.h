#pragma once

#include "base/Color.h"
#include "base/Geometry.h"
#include "platform/apple/SystemColors.h"
#include "rendering/Canvas.h"

#include <AppKit/AppKit.h>
#include <string>
#include <string_view>

namespace vantry {

/// Never nil; empty when `text` is not valid UTF-8.
[[nodiscard]] NSString* nsString(std::string_view text);

[[nodiscard]] inline NSRect nsRect(const Rect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

[[nodiscard]] inline NSSize nsSize(const Size& size) { return NSMakeSize(size.width, size.height); }

[[nodiscard]] NSColor* nsColor(const Rgba& color);

/// The role's colour with `alpha`; it follows the appearance.
[[nodiscard]] NSColor* nsColor(SystemColor role, CGFloat alpha);

[[nodiscard]] NSFont* nsFont(const Font& font);

/// Light or dark; variants such as high contrast count as one of the two.
[[nodiscard]] Appearance appearanceOf(NSView* view);

} // namespace vantry
