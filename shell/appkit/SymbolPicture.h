#pragma once

#include "base/Color.h"

#include <AppKit/AppKit.h>
#include <string_view>

namespace vantry {

// Symbols are named as in SF Symbols. A picture is of one colour. Main thread.

/// Nil for a name that this system does not know.
[[nodiscard]] NSImage* symbolPicture(std::string_view name, CGFloat pointSize);
/// A view in a column of symbols, empty until it is given one; screen readers pass over it.
[[nodiscard]] NSImageView* makeSymbolView(CGFloat side);
void showSymbol(NSImageView* view, std::string_view name, CGFloat pointSize, SystemColor color);

} // namespace vantry
