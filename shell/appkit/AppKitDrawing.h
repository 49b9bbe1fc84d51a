#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"

#include <string_view>

namespace vantry {

// What `AppKitCanvas` needs of AppKit besides Core Graphics. For use inside a view's `drawRect:`. Main thread.

/// The sRGB value of a role in the current drawing appearance.
[[nodiscard]] Rgba drawnColor(SystemColor role);

/// Draws one line, centred in `rect` and not clipped to it, into the current graphics context, which must be flipped.
void drawTextLine(std::string_view text, const Font& font, const Rgba& color, const Rect& rect);

/// The height of the font's bounding box.
[[nodiscard]] double fontBoundingHeight(const Font& font);

[[nodiscard]] double textLineWidth(std::string_view text, const Font& font);

} // namespace vantry
