#pragma once

#include "base/Color.h"

#include <AppKit/AppKit.h>
#include <string_view>

namespace vantry {

// Symbols have the names of SF Symbols. A picture has one colour. Main thread.

/// A circle for a name that this system does not know.
[[nodiscard]] NSImage* symbolPicture(std::string_view name, CGFloat pointSize);
/// An empty view for a symbol. Screen readers skip it.
[[nodiscard]] NSImageView* makeSymbolView(CGFloat side);
/// An empty view of a square picture. Screen readers skip it.
[[nodiscard]] NSImageView* makePictureView(CGFloat side, NSImageScaling scaling);
void showSymbol(NSImageView* view, std::string_view name, CGFloat pointSize, SystemColor color);

} // namespace vantry
