#pragma once

#include "base/Color.h"

namespace vantry {

/// The sRGB value of a system colour in an appearance: the values that Apple publishes for macOS (Human Interface
/// Guidelines, Color, Specifications) and, for the text roles, the values of AppKit's catalog. Any thread.
[[nodiscard]] Rgba resolvedSystemColor(SystemColor role, Appearance appearance);

} // namespace vantry
