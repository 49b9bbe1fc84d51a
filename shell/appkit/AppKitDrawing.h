#pragma once

#include "base/Color.h"
#include "rendering/Canvas.h"

#include <string_view>

namespace vantry {

// What `AppKitCanvas` needs of AppKit besides Core Graphics. For use inside a view's `drawRect:`. Main thread.

/// The sRGB value of a role in the appearance that is drawn in.
[[nodiscard]] Rgba drawnColor(SystemColor role);

/// Draws one line into the current graphics context, which is flipped, centred in `rect` and not clipped to it.
void drawTextLine(std::string_view text, const Font& font, const Rgba& color, const Rect& rect);

/// The height that holds every glyph of the font.
[[nodiscard]] double fontBoundingHeight(const Font& font);

[[nodiscard]] double textLineWidth(std::string_view text, const Font& font);

} // namespace vantry
